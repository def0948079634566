#include "database_wait.h"

#include "plugin_static_function.h"

#include <QSqlQuery>

namespace support {

namespace {

constexpr int longest_wait_ms = 5000;
constexpr int primary_code_mask = 0xFF;
constexpr int code_busy = 5; // of SQLite

int allowed_ms()
{
    return plugin_static_function::database_wait_spent ? 0 : longest_wait_ms;
}

} // namespace

void wait_as_allowed(QSqlDatabase *database)
{
    database->setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(allowed_ms()));
}

void set_wait(QSqlDatabase *database, bool wait)
{
    QSqlQuery(*database).exec(
        QStringLiteral("PRAGMA busy_timeout = %1").arg(wait ? allowed_ms() : 0));
}

void note_wait(const QSqlError &error)
{
    if (error.type() == QSqlError::NoError)
        plugin_static_function::database_wait_spent = false;
    else if ((error.nativeErrorCode().toInt() & primary_code_mask) == code_busy)
        plugin_static_function::database_wait_spent = true;
}

} // namespace support
