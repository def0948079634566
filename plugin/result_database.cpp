// Where the result database lies, its tables, and emptying them.
#include "cyberduck.h"

#include "macos/cyberduck_macos.h"
#include "result_tables.h"
#include "schemes/cyberduck_ios_uid.h"
#include "schemes/cyberduck_winos.h"
#include "support/database_wait.h"
#include "support/plugin_helper_functions.h"
#include "support/plugin_static_function.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>

namespace {

constexpr char location_signature[] = "void cyberduck::set_destination_location(QString)";
constexpr char database_signature[] = "void cyberduck::create_destination_database()";
constexpr char tables_signature[] = "void cyberduck::create_db_tables()";
constexpr char clear_signature[] = "void cyberduck::clear_db_tables()";
constexpr unsigned last_valid_engine = 2;

void log_line(const QString &message, const char *signature)
{
    plugin_static_function::app_debug(message, QLatin1String(signature));
}

} // namespace

void cyberduck::set_destination_location(QString dir)
{
    log_line(QStringLiteral("[set_destination_location] starts"), location_signature);
    if (!dir.endsWith(QLatin1Char('/')))
        dir.append(QLatin1Char('/'));
    const QString name = pub_get_artifact_name().replace(QLatin1Char(' '), QLatin1Char('_'));

    result_dir_path = dir + QStringLiteral("Artifacts_Result/") + name + QLatin1Char('/');
    QDir(result_dir_path).mkpath(result_dir_path);
    temp_dir_path = result_dir_path + QStringLiteral("tmp/");
    QDir(temp_dir_path).mkpath(temp_dir_path);
    plugin_helper_obj->set_adhoc_parent_path(temp_dir_path);
    destination_db_path = result_dir_path + name + QStringLiteral(".sqlite");

    macos_adapter->macos_set_destination_location(result_dir_path, temp_dir_path,
                                                  destination_db_path);
    ios_uid_adapter->ios_uid_set_destination_location(result_dir_path, temp_dir_path,
                                                      destination_db_path);
    winos_adapter->winos_set_destination_location(result_dir_path, temp_dir_path,
                                                  destination_db_path);
    log_line(QStringLiteral("[set_destination_location] ends"), location_signature);
}

void cyberduck::create_destination_database()
{
    log_line(QStringLiteral("[create_destination_database] starts"), database_signature);
    create_db_tables();
    log_line(QStringLiteral("[create_destination_database] ends"), database_signature);
}

void cyberduck::create_db_tables()
{
    log_line(QStringLiteral("[create_db_tables] starts"), tables_signature);
    const QString connection = QString::fromLatin1(tables_signature);
    QSqlDatabase::removeDatabase(connection);
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
    db.setDatabaseName(destination_db_path);
    support::wait_as_allowed(&db);
    if (!db.open()) {
        log_line(QStringLiteral("[create_db_tables]Destination Db opening for table "
                                "creation---------FAILED---------"),
                 tables_signature);
        log_line(db.lastError().text(), tables_signature);
        return;
    }
    for (const result_table &table : result_tables) {
        if (!plugin_static_function::execute_db_command_by_dbreference(
                QLatin1String(table.statement), db, connection)) {
            log_line(QStringLiteral(" table creation -----FAILED---- ") + QLatin1String(table.name),
                     tables_signature);
            support::set_wait(&db, true); // shorter, when this statement has waited in vain
        }
    }
    db.close();
    log_line(QStringLiteral("[create_db_tables] ends"), tables_signature);
}

void cyberduck::clear_db_tables()
{
    if (!QFileInfo::exists(destination_db_path)) {
        log_line(QStringLiteral("[clear_db_tables]DB not exists and so returning..."),
                 clear_signature);
        return;
    }
    if (static_cast<unsigned>(engine_type) > last_valid_engine)
        return;
    for (const QString &table : qAsConst(essential_tab_list)) {
        plugin_static_function::execute_db_command_by_dbpath(
            QStringLiteral("delete from '") + table + QLatin1Char('\''), destination_db_path,
            QLatin1String(clear_signature));
    }
}
