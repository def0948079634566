#include "result_connection.h"

#include "support/database_wait.h"

#include <QSqlError>
#include <QVariant>

namespace macos {

namespace {

// Whether two texts share their characters; null and empty ones have characters of their own.
bool is_same_object(const QString &left, const QString &right)
{
    return left.constData() == right.constData() && left.size() == right.size();
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
    if (!database_.open())
        return false;
    begin();
    return true;
}

void result_connection::begin()
{
    // The right to write is asked for at once, so that the wait for it is not paid by each row.
    QSqlQuery query(database_);
    if (!query.exec(QStringLiteral("BEGIN IMMEDIATE"))) {
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
    if (!database_.isOpen())
        return true;
    support::set_wait(&database_, true);
    const bool committed = database_.commit();
    support::note_wait(committed ? QSqlError() : database_.lastError());
    database_.close();
    return committed;
}

QString result_connection::error_text() const
{
    return database_.lastError().text();
}

insert_statement::insert_statement(const QSqlDatabase &database, const char *statement)
    : query_(database)
    , statement_(QLatin1String(statement))
    , prepared_(query_.prepare(statement_))
{
}

bool insert_statement::insert(const QString *const *values, int count)
{
    if (!prepared_)
        prepared_ = query_.prepare(statement_);
    // Executing an unprepared statement would replace the error that says why it is not.
    if (!prepared_)
        return false;
    bound_.resize(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        QString &bound = bound_[static_cast<size_t>(i)];
        // Most columns of neighbouring rows share one text, and binding costs 0.15 µs each.
        if (query_.isActive() && is_same_object(bound, *values[i]))
            continue;
        query_.bindValue(i, *values[i]);
        bound = *values[i];
    }
    return query_.exec();
}

QString insert_statement::error_text() const
{
    return query_.lastError().text();
}

QString insert_statement::executed_query() const
{
    const QString executed = query_.executedQuery();
    return executed.isEmpty() ? statement_ : executed;
}

} // namespace macos
