#include "results/database/database_set_up.h"

#include "results/database/database_commands.h"
#include "results/database/result_tables.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>

namespace results {

namespace {

constexpr char tables_signature[] = "void cyberduck::create_db_tables()";
constexpr char clear_signature[] = "void cyberduck::clear_db_tables()";

} // namespace

result_places make_result_places(const QString &result_directory, const QString &plugin_name)
{
    QString name = plugin_name;
    name.replace(QLatin1Char(' '), QLatin1Char('_'));
    QString base = result_directory;
    if (!base.endsWith(QLatin1Char('/')))
        base.append(QLatin1Char('/'));
    result_places places;
    places.folder = base + QStringLiteral("Artifacts_Result/") + name + QLatin1Char('/');
    QDir(places.folder).mkpath(places.folder);
    places.temporary_folder = places.folder + QStringLiteral("tmp/");
    QDir(places.temporary_folder).mkpath(places.temporary_folder);
    places.database = places.folder + name + QStringLiteral(".sqlite");
    return places;
}

void create_tables(const QString &database_path, const database_context &run)
{
    run.log.write("[create_db_tables] starts", QString(), tables_signature);
    const QString connection = QString::fromLatin1(tables_signature);
    QSqlDatabase::removeDatabase(connection);
    if (run.left_connections != nullptr)
        run.left_connections->insert(connection);
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
    db.setDatabaseName(database_path);
    run.wait.set_before_opening(&db);
    if (!db.open()) {
        run.log.write("[create_db_tables]Destination Db opening for table "
                      "creation---------FAILED---------",
                      QString(), tables_signature);
        run.log.write("", db.lastError().text(), tables_signature);
        return;
    }
    database_commands commands(run);
    for (const result_table &table : result_tables) {
        if (!commands.execute_db_command_by_dbreference(QLatin1String(table.statement), db,
                                                        connection)) {
            run.log.write(" table creation -----FAILED---- ", QLatin1String(table.name),
                          tables_signature);
            run.wait.set(&db, true); // no more waiting after a wait without success
        }
    }
    db.close();
    run.log.write("[create_db_tables] ends", QString(), tables_signature);
}

void clear_tables(const QString &database_path, int engine_type, const QStringList &tables,
                  const database_context &run)
{
    if (!QFileInfo::exists(database_path)) {
        run.log.write("[clear_db_tables]DB not exists and so returning...", QString(),
                      clear_signature);
        return;
    }
    if (!is_extracting_engine(engine_type))
        return;
    database_commands commands(run);
    for (const QString &table : tables) {
        commands.execute_db_command_by_dbpath(QStringLiteral("delete from '") + table +
                                                  QLatin1Char('\''),
                                              database_path, QLatin1String(clear_signature));
    }
}

void remove_left_connections(QSet<QString> *names)
{
    // Qt removes all of them with the application.
    const bool are_there = QCoreApplication::instance() != nullptr;
    for (const QString &name : are_there ? qAsConst(*names) : QSet<QString>())
        QSqlDatabase::removeDatabase(name);
    names->clear();
}

} // namespace results
