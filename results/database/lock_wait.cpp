#include "results/database/lock_wait.h"

#include <QSqlQuery>

namespace results {

namespace {

constexpr int max_wait_ms = 5000;
constexpr int primary_code_mask = 0xFF;
constexpr int code_busy = 5; // of SQLite

} // namespace

int lock_wait::allowed_ms() const
{
    return is_spent_ ? 0 : max_wait_ms;
}

void lock_wait::set_before_opening(QSqlDatabase *database) const
{
    database->setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(allowed_ms()));
}

void lock_wait::set(QSqlDatabase *database, bool wait) const
{
    QSqlQuery(*database).exec(
        QStringLiteral("PRAGMA busy_timeout = %1").arg(wait ? allowed_ms() : 0));
}

void lock_wait::note(const QSqlError &error)
{
    if (error.type() == QSqlError::NoError)
        is_spent_ = false;
    else if ((error.nativeErrorCode().toInt() & primary_code_mask) == code_busy)
        is_spent_ = true;
}

} // namespace results
