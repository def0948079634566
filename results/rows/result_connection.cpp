#include "results/rows/result_connection.h"

#include "results/rows/query_row_writer.h"
#include "results/rows/sqlite_row_writer.h"

#include <QSqlQuery>
#include <QVariant>

#include <utility>

namespace results {

namespace {

bool open_database(QSqlDatabase *database, sqlite3 **connection)
{
#ifdef CYBERDUCK_SHARES_SQLITE
    return open_seeing_connection(database, connection);
#else
    *connection = nullptr;
    return database->open();
#endif
}

} // namespace

result_connection::result_connection(const QString &name, const QString &db_path, lock_wait &wait)
    : name_(name)
    , wait_(wait)
{
    QSqlDatabase::removeDatabase(name_);
    database_ = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name_);
    database_.setDatabaseName(db_path);
}

result_connection::~result_connection()
{
    finish();
    database_ = QSqlDatabase(); // this handle keeps the name in use
    QSqlDatabase::removeDatabase(name_);
}

bool result_connection::open()
{
    wait_.set_before_opening(&database_);
    is_open_ = open_database(&database_, &connection_);
    if (!is_open_)
        return false;
    begin();
    return true;
}

void result_connection::begin()
{
    // Takes the write lock at once, so that no row has to wait for it.
    QSqlQuery query(database_);
    const bool may_write = query.exec(QStringLiteral("BEGIN IMMEDIATE"));
    wait_.note(query.lastError());
    if (!may_write)
        database_.transaction(); // later rows may find the lock gone
    wait_.set(&database_, false);
}

bool result_connection::begin_after_loss()
{
    return database_.transaction(); // fails inside a transaction
}

bool result_connection::finish()
{
    const bool was_open = std::exchange(is_open_, false);
    if (!database_.isOpen())
        return !was_open; // another run has taken the name
    // Even with nothing in it, a transaction could wait for a reader.
    const bool committed = !has_written() || commit();
    database_.close();
    return committed;
}

bool result_connection::has_written() const
{
    QSqlQuery query(database_);
    const bool is_known = query.exec(QStringLiteral("SELECT total_changes()")) && query.next();
    return !is_known || query.value(0).toLongLong() > 0;
}

bool result_connection::commit()
{
    wait_.note(QSqlError()); // rows went in
    wait_.set(&database_, true);
    QSqlQuery query(database_); // the driver's own commit does not tell the error's code
    const bool committed = query.exec(QStringLiteral("COMMIT"));
    commit_error_ = query.lastError();
    wait_.note(commit_error_);
    return committed;
}

QString result_connection::error_text() const
{
    return commit_error_.isValid() ? commit_error_.text() : database_.lastError().text();
}

std::unique_ptr<row_writer> result_connection::make_writer(const char *statement) const
{
#ifdef CYBERDUCK_SHARES_SQLITE
    if (connection_ != nullptr)
        return std::make_unique<sqlite_row_writer>(database_, connection_, statement);
#endif
    return std::make_unique<query_row_writer>(database_, statement);
}

insert_statement::insert_statement(const result_connection &connection, const char *statement)
    : writer_(connection.make_writer(statement))
{
}

insert_statement::insert_statement(const QSqlDatabase &database, const char *statement)
    : writer_(std::make_unique<query_row_writer>(database, statement))
{
}

} // namespace results
