#include "extraction/source/source_paths.h"

#include <QStringList>

namespace extraction {

namespace {

bool is_home_folder(const QString &source_type)
{
    return source_type == QLatin1String("macOS_Home_Directory");
}

QString with_leading_slash(const QString &path)
{
    if (path.startsWith(QLatin1Char('/')) || path.trimmed().isEmpty())
        return path;
    return QLatin1Char('/') + path;
}

// The source is the home folder itself: the path up to it is cut.
QString below_home(QString path, const QString &user)
{
    const int position = path.indexOf(user);
    if (position >= 0)
        path.remove(0, position + user.size());
    return path;
}

} // namespace

QString get_relative_file_path(QString path, const QString &user, const QString &source_type)
{
    return with_leading_slash(is_home_folder(source_type) ? below_home(path, user) : path);
}

QPair<QString, QString> get_final_artifact_source_file(QString path, const QString &user,
                                                       const QString &source_type)
{
    QString relation;
    if (is_home_folder(source_type)) {
        relation = path;
        path = below_home(path, user);
    }
    return {with_leading_slash(path), relation};
}

QString get_complete_file_path(QString path, const QString &user, const QString &source_type)
{
    const QString users = QStringLiteral("/Users/");
    if (is_home_folder(source_type) && path.startsWith(users)) {
        const int end_of_user = path.indexOf(QLatin1Char('/'), users.size());
        path.remove(0, end_of_user < 0 ? path.size() : end_of_user);
        path.prepend(users + user);
    }
    return with_leading_slash(path);
}

source_user user_of_source_file(const QString &file_path, const QString &source_root,
                                const QList<source_user> &accounts)
{
    if (accounts.isEmpty())
        return {};
    const QStringList parts = file_path.mid(source_root.size()).split(QLatin1Char('/'));
    if (parts.size() < 2)
        return {};
    const QString &candidate = parts.at(1);
    for (const source_user &account : accounts) {
        if (account.name == candidate)
            return account;
    }
    return {candidate, QString()};
}

} // namespace extraction
