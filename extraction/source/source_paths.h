// Paths between the examined source and the rows. The names are those of the host's library.
#pragma once

#include <QList>
#include <QPair>
#include <QString>

namespace extraction {

// An account of the source.
struct source_user
{
    QString name; // also that of the home folder below Users/
    QString domain_name;
};

// A path as a row shows it: relative to the home when the source is a home folder.
[[nodiscard]] QString get_relative_file_path(QString path, const QString &user,
                                             const QString &source_type);
// First: source_file. Second: artifacts_relation_source_file, null unless a home folder.
[[nodiscard]] QPair<QString, QString>
get_final_artifact_source_file(QString path, const QString &user, const QString &source_type);
[[nodiscard]] QString get_complete_file_path(QString path, const QString &user,
                                             const QString &source_type);
// Whose home the path lies in: its second component below the root. Null names while no accounts
// are known.
[[nodiscard]] source_user user_of_source_file(const QString &file_path, const QString &source_root,
                                              const QList<source_user> &accounts);

} // namespace extraction
