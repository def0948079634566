// One statement against an SQLite database, by path or on an open connection. What differs between
// the operations are the words of their log lines, which readers of the log tell apart.
#include "plugin_static_function.h"

#include "database_wait.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <optional>

namespace {

constexpr char driver_name[] = "QSQLITE";

// The first line names the database, the others the caller, the statement and the error.
struct failure_words
{
    const char *signature;
    const char *database;
    const char *caller;
    const char *command; // null: the statement is not told
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

void log_line(const char *text, const QString &value, const char *signature)
{
    plugin_static_function::app_debug(QLatin1String(text) + value, QLatin1String(signature));
}

void log_failure(const failure_words &words, const QString &database, const QString &caller,
                 const QString &command, const QSqlError &error)
{
    log_line(words.database, database, words.signature);
    log_line(words.caller, caller, words.signature);
    if (words.command != nullptr)
        log_line(words.command, command, words.signature);
    log_line(words.error, error.text(), words.signature);
}

// Adds the connection anew and opens it; nullopt after the failure lines.
std::optional<QSqlDatabase> open_connection(const QString &name, const QString &db_path,
                                            const failure_words &words, const QString &caller)
{
    QSqlDatabase::removeDatabase(name);
    QSqlDatabase db = QSqlDatabase::addDatabase(QLatin1String(driver_name), name);
    db.setDatabaseName(db_path);
    support::wait_as_allowed(&db);
    if (db.open())
        return db;
    log_failure(words, db_path, caller, QString(), db.lastError());
    return std::nullopt;
}

enum class outcome { done, failed, cancelled };

outcome run_query(QSqlQuery *query, const QString &command, const QStringList &values)
{
    // A statement that cannot be prepared keeps that error: executing would replace its text.
    const bool prepared = query->prepare(command);
    for (const QString &value : values) {
        if (plugin_static_function::bool_cancel_extraction)
            return outcome::cancelled;
        query->addBindValue(value);
    }
    return prepared && query->exec() ? outcome::done : outcome::failed;
}

bool execute(const QString &command, const QStringList &values, QSqlDatabase *db,
             const QString &database, const failure_words &words, const QString &caller,
             bool close_afterwards)
{
    QSqlQuery query(*db);
    const outcome result = run_query(&query, command, values);
    if (result == outcome::cancelled)
        return false;
    if (result == outcome::failed) {
        support::note_wait(query.lastError());
        log_failure(words, database, caller, command, query.lastError());
    }
    query.finish();
    if (close_afterwards)
        db->close();
    return result == outcome::done;
}

bool execute_by_path(const QString &command, const QStringList &values, const QString &db_path,
                     const QString &caller, const char *signature, const char *caller_words)
{
    const auto db = open_connection(QLatin1String(signature) + caller, db_path,
                                    execute_open_words(signature), caller);
    if (!db)
        return false;
    QSqlDatabase connection = *db;
    return execute(command, values, &connection, db_path,
                   execute_query_words(signature, caller_words), caller, true);
}

bool execute_by_reference(const QString &command, const QStringList &values, QSqlDatabase *db,
                          const QString &caller, const char *signature)
{
    return execute(command, values, db, db->databaseName(),
                   execute_query_words(signature, " CALLER FUNCTION -  -  "), caller, false);
}

// Returns the rows' texts; *result tells whether the end was reached.
QStringList collect_column(QSqlQuery *query, int column, outcome *result)
{
    QStringList texts;
    *result = outcome::cancelled;
    while (query->next()) {
        if (plugin_static_function::bool_cancel_extraction)
            return texts;
        texts.append(query->value(column).toString().trimmed());
    }
    *result = outcome::done;
    return texts;
}

QStringList read_list(const QString &command, const QStringList &values, int column,
                      QSqlDatabase *db, const QString &database, const failure_words &words,
                      const QString &caller, outcome *result)
{
    QSqlQuery query(*db);
    *result = run_query(&query, command, values);
    if (*result == outcome::failed)
        log_failure(words, database, caller, command, query.lastError());
    if (*result != outcome::done)
        return {};
    return collect_column(&query, column, result);
}

QStringList list_by_reference(const QString &command, const QStringList &values, int column,
                              QSqlDatabase *db, const QString &caller, const char *signature)
{
    log_line(" Start ", QString(), signature);
    outcome result = outcome::failed;
    const QStringList texts = read_list(command, values, column, db, db->databaseName(),
                                        list_by_reference_query_words(signature), caller, &result);
    if (result == outcome::done)
        log_line(" end ", QString(), signature);
    return texts;
}

QStringList list_by_path(const QString &command, const QStringList &values, int column,
                         const QString &db_path, const QString &caller, const char *signature,
                         const char *closing_word)
{
    log_line(" Start ", QString(), signature);
    const QString name = QString::number(QDateTime::currentMSecsSinceEpoch());
    outcome result = outcome::failed;
    QStringList texts;
    {
        auto db = open_connection(name, db_path, list_open_words(signature), caller);
        if (db) {
            texts = read_list(command, values, column, &*db, db_path,
                              list_by_path_query_words(signature), caller, &result);
            db->close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    if (result == outcome::done)
        log_line(closing_word, QString(), signature);
    return texts;
}

} // namespace

bool plugin_static_function::execute_db_command_by_dbpath(QString command, QString db_path,
                                                          QString caller)
{
    return execute_by_path(command, {}, db_path, caller, execute_by_path_signature,
                           "CALLER FUNCTION -  ");
}

bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbpath(QString command,
                                                                            QStringList values,
                                                                            QString db_path,
                                                                            QString caller)
{
    return execute_by_path(command, values, db_path, caller, execute_bound_by_path_signature,
                           " CALLER FUNCTION -  ");
}

bool plugin_static_function::execute_db_command_by_dbreference(QString command, QSqlDatabase &db,
                                                               QString caller)
{
    return execute_by_reference(command, {}, &db, caller, execute_by_reference_signature);
}

bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbreference(QString command,
                                                                                 QStringList values,
                                                                                 QSqlDatabase &db,
                                                                                 QString caller)
{
    return execute_by_reference(command, values, &db, caller, execute_bound_by_reference_signature);
}

QStringList plugin_static_function::get_stringlist_from_db_by_dbreference(QString command,
                                                                          int column,
                                                                          QSqlDatabase &db,
                                                                          QString caller)
{
    return list_by_reference(command, {}, column, &db, caller, list_by_reference_signature);
}

QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbreference(
    QString command, QStringList values, int column, QSqlDatabase &db, QString caller)
{
    return list_by_reference(command, values, column, &db, caller,
                             list_bound_by_reference_signature);
}

QStringList plugin_static_function::get_stringlist_from_db_by_dbpath(QString command, int column,
                                                                     QString db_path,
                                                                     QString caller)
{
    return list_by_path(command, {}, column, db_path, caller, list_by_path_signature, " end ");
}

QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbpath(
    QString command, QStringList values, int column, QString db_path, QString caller)
{
    return list_by_path(command, values, column, db_path, caller, list_bound_by_path_signature,
                        " End ");
}

bool plugin_static_function::check_value_existence_in_db_by_dbreference(QString command, int column,
                                                                        QString value,
                                                                        QSqlDatabase db)
{
    QSqlQuery query(db);
    if (run_query(&query, command, {}) == outcome::failed) {
        // The prefix says "by path": readers of the log know it so.
        log_line("[check_value_existence_in_db_by_dbpath] query --------FAILED------",
                 db.connectionName(), check_value_signature);
        log_line("[check_value_existence_in_db_by_dbpath]command", command, check_value_signature);
        log_line("[check_value_existence_in_db_by_dbpath] error", query.lastError().text(),
                 check_value_signature);
        return false;
    }
    outcome result = outcome::failed;
    const QStringList texts = collect_column(&query, column, &result);
    if (result != outcome::done)
        return false;
    const QString wanted = value.trimmed();
    for (const QString &text : texts) {
        if (bool_cancel_extraction)
            return false;
        if (text == wanted)
            return true;
    }
    return false;
}

QStringList plugin_static_function::get_total_tables_list_by_dbpath(QString db_path, QString caller)
{
    auto db = open_connection(QLatin1String(tables_signature) + caller, db_path,
                              execute_open_words(tables_signature), caller);
    if (!db)
        return {};
    const QStringList tables = db->tables();
    db->close();
    return tables;
}
