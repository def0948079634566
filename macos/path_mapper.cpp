#include "path_mapper.h"

#include "support/plugin_static_function.h"

namespace macos {

path_mapper::path_mapper(const QString &source_root, const QString &source_type)
    : source_root_(source_root)
    , source_type_(source_type)
{
}

QString path_mapper::reachable(const QString &recorded, const QString &user) const
{
    return source_root_ + QLatin1String("Users/") + user + recorded.trimmed().mid(1);
}

QString path_mapper::display(const QString &path) const
{
    return untrimmed_display(path.trimmed());
}

QString path_mapper::untrimmed_display(const QString &path) const
{
    QString shown = path;
    if (shown.startsWith(source_root_))
        shown.remove(0, source_root_.size());
    if (!shown.startsWith(QLatin1Char('/')) && !shown.trimmed().isEmpty())
        shown.prepend(QLatin1Char('/'));
    return shown;
}

QString path_mapper::shown(const QString &path, const QString &user) const
{
    return plugin_static_function::get_relative_file_path(display(path), user, source_type_);
}

QString path_mapper::shown_folder(const QString &recorded, const QString &user) const
{
    return recorded.isNull() ? QString() : shown(reachable(recorded, user), user);
}

QPair<QString, QString> path_mapper::source_files(const QString &path, const QString &user) const
{
    return plugin_static_function::get_final_artifact_source_file(display(path), user,
                                                                  source_type_);
}

} // namespace macos
