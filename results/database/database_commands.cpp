#include "results/database/database_commands.h"

#include "results/database/lock_wait.h"
#include "text/stored_text.h"

#include <QDateTime>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <optional>

namespace results {

namespace {

constexpr char driver_name[] = "QSQLITE";

// The first line names the database, the others the caller, the statement and the error.
struct failure_words
{
    const char *signature;
    const char *database;
    const char *caller;
    const char *command; // null: the statement is not logged
    const char *error;
};

constexpr char execute_by_path_signature[] =
    "static bool plugin_static_function::execute_db_command_by_dbpath(QString, QString, QString)";
constexpr char execute_bound_by_path_signature[] =
    "static bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbpath(QString, "
    "QStringList, QString, QString)";
constexpr char execute_by_reference_signature[] =
    "static bool plugin_static_function::execute_db_command_by_dbreference(QString, "
    "QSqlDatabase &, QString)";
constexpr char execute_bound_by_reference_signature[] =
    "static bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbreference("
    "QString, QStringList, QSqlDatabase &, QString)";
constexpr char list_by_path_signature[] =
    "static QStringList plugin_static_function::get_stringlist_from_db_by_dbpath(QString, int, "
    "QString, QString)";
constexpr char list_bound_by_path_signature[] =
    "static QStringList "
    "plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbpath(QString, "
    "QStringList, int, QString, QString)";
constexpr char list_by_reference_signature[] =
    "static QStringList plugin_static_function::get_stringlist_from_db_by_dbreference(QString, "
    "int, QSqlDatabase &, QString)";
constexpr char list_bound_by_reference_signature[] =
    "static QStringList "
    "plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbreference(QString, "
    "QStringList, int, QSqlDatabase &, QString)";
constexpr char check_value_signature[] =
    "static bool plugin_static_function::check_value_existence_in_db_by_dbreference(QString, int, "
    "QString, QSqlDatabase)";
constexpr char tables_signature[] =
    "static QStringList plugin_static_function::get_total_tables_list_by_dbpath(QString, QString)";

constexpr failure_words execute_open_words(const char *signature)
{
    return {signature, " Destination Db opening --------FAILED------ ", "CALLER FUNCTION -  ",
            nullptr, " error -  "};
}

constexpr failure_words execute_query_words(const char *signature, const char *caller)
{
    return {signature, " query  --------FAILED------ db file - ", caller, " command -  ",
            " error -  "};
}

constexpr failure_words list_open_words(const char *signature)
{
    return {signature, "Destination Db opening --------FAILED------ ", "CALLER FUNCTION -  ",
            nullptr, "error -  "};
}

constexpr failure_words list_by_path_query_words(const char *signature)
{
    return {signature, "query  --------FAILED------db file - ", "CALLER FUNCTION -  ",
            "command -  ", "error -  "};
}

constexpr failure_words list_by_reference_query_words(const char *signature)
{
    return {signature, " query  --------FAILED------db file - ", " CALLER FUNCTION -  -  ",
            " command -  ", " error -  "};
}

void log_line(const database_context &run, const char *text, const QString &value,
              const char *signature)
{
    run.log.write(text, value, signature);
}

void log_failure(const database_context &run, const failure_words &words, const QString &database,
                 const QString &caller, const QString &command, const QSqlError &error)
{
    log_line(run, words.database, database, words.signature);
    log_line(run, words.caller, caller, words.signature);
    if (words.command != nullptr)
        log_line(run, words.command, command, words.signature);
    log_line(run, words.error, error.text(), words.signature);
}

// Adds the connection anew and opens it; nullopt after the failure lines.
std::optional<QSqlDatabase> open_connection(const database_context &run, const QString &name,
                                            const QString &db_path, const failure_words &words,
                                            const QString &caller)
{
    QSqlDatabase::removeDatabase(name);
    if (run.left_connections != nullptr)
        run.left_connections->insert(name);
    QSqlDatabase db = QSqlDatabase::addDatabase(QLatin1String(driver_name), name);
    db.setDatabaseName(db_path);
    run.wait.set_before_opening(&db);
    if (db.open())
        return db;
    log_failure(run, words, db_path, caller, QString(), db.lastError());
    return std::nullopt;
}

enum class outcome { done, failed, cancelled };

outcome run_query(const database_context &run, QSqlQuery *query, const QString &command,
                  const QStringList &values)
{
    // A statement that cannot be prepared keeps that error: executing would replace its text.
    const bool prepared = query->prepare(text::whole_characters(command));
    for (const QString &value : values) {
        if (run.cancelled.is_requested())
            return outcome::cancelled;
        query->addBindValue(text::text_for_query(value));
    }
    return prepared && query->exec() ? outcome::done : outcome::failed;
}

bool execute(const database_context &run, const QString &command, const QStringList &values,
             QSqlDatabase *db, const QString &database, const failure_words &words,
             const QString &caller, bool close_afterwards)
{
    QSqlQuery query(*db);
    const outcome result = run_query(run, &query, command, values);
    if (result == outcome::cancelled)
        return false;
    if (result == outcome::failed) {
        run.wait.note(query.lastError());
        log_failure(run, words, database, caller, command, query.lastError());
    }
    query.finish();
    if (close_afterwards)
        db->close();
    return result == outcome::done;
}

bool execute_by_path(const database_context &run, const QString &command, const QStringList &values,
                     const QString &db_path, const QString &caller, const char *signature,
                     const char *caller_words)
{
    const auto db = open_connection(run, QLatin1String(signature) + caller, db_path,
                                    execute_open_words(signature), caller);
    if (!db)
        return false;
    QSqlDatabase connection = *db;
    return execute(run, command, values, &connection, db_path,
                   execute_query_words(signature, caller_words), caller, true);
}

bool execute_by_reference(const database_context &run, const QString &command,
                          const QStringList &values, QSqlDatabase *db, const QString &caller,
                          const char *signature)
{
    return execute(run, command, values, db, db->databaseName(),
                   execute_query_words(signature, " CALLER FUNCTION -  -  "), caller, false);
}

// Returns the rows' texts; *result tells whether the end was reached.
QStringList collect_column(const database_context &run, QSqlQuery *query, int column,
                           outcome *result)
{
    QStringList texts;
    *result = outcome::cancelled;
    while (query->next()) {
        if (run.cancelled.is_requested())
            return texts;
        texts.append(query->value(column).toString().trimmed());
    }
    *result = outcome::done;
    return texts;
}

QStringList read_list(const database_context &run, const QString &command,
                      const QStringList &values, int column, QSqlDatabase *db,
                      const QString &database, const failure_words &words, const QString &caller,
                      outcome *result)
{
    QSqlQuery query(*db);
    *result = run_query(run, &query, command, values);
    if (*result == outcome::failed)
        log_failure(run, words, database, caller, command, query.lastError());
    if (*result != outcome::done)
        return {};
    return collect_column(run, &query, column, result);
}

QStringList list_by_reference(const database_context &run, const QString &command,
                              const QStringList &values, int column, QSqlDatabase *db,
                              const QString &caller, const char *signature)
{
    log_line(run, " Start ", QString(), signature);
    outcome result = outcome::failed;
    const QStringList texts = read_list(run, command, values, column, db, db->databaseName(),
                                        list_by_reference_query_words(signature), caller, &result);
    if (result == outcome::done)
        log_line(run, " end ", QString(), signature);
    return texts;
}

QStringList list_by_path(const database_context &run, const QString &command,
                         const QStringList &values, int column, const QString &db_path,
                         const QString &caller, const char *signature, const char *closing_word)
{
    log_line(run, " Start ", QString(), signature);
    const QString name = QString::number(QDateTime::currentMSecsSinceEpoch());
    outcome result = outcome::failed;
    QStringList texts;
    {
        auto db = open_connection(run, name, db_path, list_open_words(signature), caller);
        if (db) {
            texts = read_list(run, command, values, column, &*db, db_path,
                              list_by_path_query_words(signature), caller, &result);
            db->close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    if (run.left_connections != nullptr)
        run.left_connections->remove(name);
    if (result == outcome::done)
        log_line(run, closing_word, QString(), signature);
    return texts;
}

} // namespace

bool database_commands::execute_db_command_by_dbpath(QString command, QString db_path,
                                                     QString caller)
{
    return execute_by_path(run_, command, {}, db_path, caller, execute_by_path_signature,
                           "CALLER FUNCTION -  ");
}

bool database_commands::execute_db_command_with_addbindvalue_by_dbpath(QString command,
                                                                       QStringList values,
                                                                       QString db_path,
                                                                       QString caller)
{
    return execute_by_path(run_, command, values, db_path, caller, execute_bound_by_path_signature,
                           " CALLER FUNCTION -  ");
}

bool database_commands::execute_db_command_by_dbreference(QString command, QSqlDatabase &db,
                                                          QString caller)
{
    return execute_by_reference(run_, command, {}, &db, caller, execute_by_reference_signature);
}

bool database_commands::execute_db_command_with_addbindvalue_by_dbreference(QString command,
                                                                            QStringList values,
                                                                            QSqlDatabase &db,
                                                                            QString caller)
{
    return execute_by_reference(run_, command, values, &db, caller,
                                execute_bound_by_reference_signature);
}

QStringList database_commands::get_stringlist_from_db_by_dbreference(QString command, int column,
                                                                     QSqlDatabase &db,
                                                                     QString caller)
{
    return list_by_reference(run_, command, {}, column, &db, caller, list_by_reference_signature);
}

QStringList database_commands::get_stringlist_from_db_with_addbindvalues_by_dbreference(
    QString command, QStringList values, int column, QSqlDatabase &db, QString caller)
{
    return list_by_reference(run_, command, values, column, &db, caller,
                             list_bound_by_reference_signature);
}

QStringList database_commands::get_stringlist_from_db_by_dbpath(QString command, int column,
                                                                QString db_path, QString caller)
{
    return list_by_path(run_, command, {}, column, db_path, caller, list_by_path_signature,
                        " end ");
}

QStringList database_commands::get_stringlist_from_db_with_addbindvalues_by_dbpath(
    QString command, QStringList values, int column, QString db_path, QString caller)
{
    return list_by_path(run_, command, values, column, db_path, caller,
                        list_bound_by_path_signature, " End ");
}

bool database_commands::check_value_existence_in_db_by_dbreference(QString command, int column,
                                                                   QString value, QSqlDatabase db)
{
    QSqlQuery query(db);
    if (run_query(run_, &query, command, {}) == outcome::failed) {
        // The prefix says "by path" for both ways. People search logs for it: do not reword.
        log_line(run_, "[check_value_existence_in_db_by_dbpath] query --------FAILED------",
                 db.connectionName(), check_value_signature);
        log_line(run_, "[check_value_existence_in_db_by_dbpath]command", command,
                 check_value_signature);
        log_line(run_, "[check_value_existence_in_db_by_dbpath] error", query.lastError().text(),
                 check_value_signature);
        return false;
    }
    outcome result = outcome::failed;
    const QStringList texts = collect_column(run_, &query, column, &result);
    if (result != outcome::done)
        return false;
    const QString wanted = value.trimmed();
    for (const QString &text : texts) {
        if (run_.cancelled.is_requested())
            return false;
        if (text == wanted)
            return true;
    }
    return false;
}

QStringList database_commands::get_total_tables_list_by_dbpath(QString db_path, QString caller)
{
    auto db = open_connection(run_, QLatin1String(tables_signature) + caller, db_path,
                              execute_open_words(tables_signature), caller);
    if (!db)
        return {};
    const QStringList tables = db->tables();
    db->close();
    return tables;
}

} // namespace results
