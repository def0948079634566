#include "extraction/source/path_mapper.h"

#include "extraction/source/source_paths.h"

#include <QStringBuilder>

namespace extraction {

path_mapper::path_mapper(const QString &source_root, const QString &source_type)
    : source_root_(source_root)
    , source_type_(source_type)
{
}

QString path_mapper::reachable(const QString &recorded, const QString &user) const
{
    const QStringView home_relative = QStringView(recorded).trimmed();
    return source_root_ % QLatin1String("Users/") % user %
           home_relative.mid(home_relative.isEmpty() ? 0 : 1);
}

QString path_mapper::display(const QString &path) const
{
    return untrimmed_display(path.trimmed());
}

QString path_mapper::untrimmed_display(const QString &path) const
{
    const bool below = path.startsWith(source_root_);
    const QStringView rest = QStringView(path).mid(below ? source_root_.size() : 0);
    if (rest.startsWith(QLatin1Char('/')) || rest.trimmed().isEmpty())
        return below ? rest.toString() : path;
    return QLatin1Char('/') % rest;
}

QString path_mapper::shown(const QString &path, const QString &user) const
{
    return get_relative_file_path(display(path), user, source_type_);
}

QString path_mapper::shown_folder(const QString &recorded, const QString &user) const
{
    return recorded.isNull() ? QString() : shown(reachable(recorded, user), user);
}

QPair<QString, QString> path_mapper::source_files(const QString &path, const QString &user) const
{
    return get_final_artifact_source_file(display(path), user, source_type_);
}

} // namespace extraction
