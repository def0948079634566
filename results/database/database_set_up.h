// Makes the tables of the result database and empties them.
#pragma once

#include "results/database/database_context.h"

#include <QString>
#include <QStringList>

namespace results {

// Where the results of a plug-in go. Folders end in "/".
struct result_places
{
    QString folder;
    QString temporary_folder;
    QString database;
};

// Makes the folders of that plug-in below `result_directory`.
[[nodiscard]] result_places make_result_places(const QString &result_directory,
                                               const QString &plugin_name);
// Makes the tables that are missing. Failures are logged.
void create_tables(const QString &database_path, const database_context &run);
// Empties the named tables. Does nothing when there is no database, or for an engine that does not
// extract.
void clear_tables(const QString &database_path, int engine_type, const QStringList &tables,
                  const database_context &run);

// Removes the connections that stayed registered with Qt. They refer to data of this library, which
// the host may unload.
void remove_left_connections(QSet<QString> *names);

} // namespace results
