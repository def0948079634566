#include "result_connection.h"

#include "query_row_writer.h"
#include "sqlite_row_writer.h"
#include "support/database_wait.h"

#include <QSqlQuery>

#include <utility>

namespace macos {

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

result_connection::result_connection(const QString &name, const QString &db_path)
    : name_(name)
{
    QSqlDatabase::removeDatabase(name_);
    database_ = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name_);
    database_.setDatabaseName(db_path);
}

result_connection::~result_connection()
{
    finish();
    database_ = QSqlDatabase(); // the name is in use as long as this handle lives
    QSqlDatabase::removeDatabase(name_);
}

bool result_connection::open()
{
    support::wait_as_allowed(&database_);
    is_open_ = open_database(&database_, &connection_);
    if (!is_open_)
        return false;
    begin();
    return true;
}

void result_connection::begin()
{
    // The right to write is asked for at once, so that the wait for it is not paid by each row.
    QSqlQuery query(database_);
    may_write_ = query.exec(QStringLiteral("BEGIN IMMEDIATE"));
    if (!may_write_) {
        support::note_wait(query.lastError());
        database_.transaction(); // the lock may go while rows are still to come
    }
    support::set_wait(&database_, false);
}

bool result_connection::begin_after_loss()
{
    return database_.transaction(); // refused inside a transaction
}

bool result_connection::finish()
{
    const bool was_open = std::exchange(is_open_, false);
    if (!database_.isOpen())
        return !was_open; // another run has taken the name
    support::set_wait(&database_, true);
    bool committed = false;
    {
        QSqlQuery query(database_); // the driver's own commit does not tell the error's code
        committed = query.exec(QStringLiteral("COMMIT"));
        commit_error_ = query.lastError();
    }
    // Without the right to write, a transaction that ends well has nothing in it.
    if (may_write_ || !committed)
        support::note_wait(commit_error_);
    database_.close();
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

} // namespace macos
