// Runs one statement against an SQLite database, by path or on an open connection. The operations
// differ in the texts of their log lines. Names and arguments are those of the host's library.
#pragma once

#include "results/database/database_context.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>

namespace results {

// A failure is logged; then a command returns false and a list is empty. `caller` is for the log.
// Both end early when the run is cancelled.
class database_commands
{
public:
    explicit database_commands(const database_context &run)
        : run_(run)
    {
    }

    bool execute_db_command_by_dbpath(QString command, QString db_path, QString caller);
    bool execute_db_command_with_addbindvalue_by_dbpath(QString command, QStringList values,
                                                        QString db_path, QString caller);
    bool execute_db_command_by_dbreference(QString command, QSqlDatabase &db, QString caller);
    bool execute_db_command_with_addbindvalue_by_dbreference(QString command, QStringList values,
                                                             QSqlDatabase &db, QString caller);
    // The trimmed texts of result column `column` (from 0), one per row.
    QStringList get_stringlist_from_db_by_dbreference(QString command, int column, QSqlDatabase &db,
                                                      QString caller);
    QStringList get_stringlist_from_db_with_addbindvalues_by_dbreference(
        QString command, QStringList values, int column, QSqlDatabase &db, QString caller);
    QStringList get_stringlist_from_db_by_dbpath(QString command, int column, QString db_path,
                                                 QString caller);
    QStringList get_stringlist_from_db_with_addbindvalues_by_dbpath(QString command,
                                                                    QStringList values, int column,
                                                                    QString db_path,
                                                                    QString caller);
    bool check_value_existence_in_db_by_dbreference(QString command, int column, QString value,
                                                    QSqlDatabase db);
    QStringList get_total_tables_list_by_dbpath(QString db_path, QString caller);

private:
    database_context run_;
};

} // namespace results
