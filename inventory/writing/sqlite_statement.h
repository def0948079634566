// A prepared statement of SQLite that is run many times.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

struct sqlite3;
struct sqlite3_stmt;

namespace inventory {

class sqlite_statement
{
public:
    sqlite_statement() = default;
    ~sqlite_statement();
    sqlite_statement(const sqlite_statement &) = delete;
    sqlite_statement &operator=(const sqlite_statement &) = delete;

    bool prepare(sqlite3 *database, const char *text);

    // Binds the next parameter. A null text, or nothing, is NULL.
    sqlite_statement &bind(const QString &text);
    // The bytes must stay until run().
    sqlite_statement &bind_utf8(const QByteArray &text);
    sqlite_statement &bind_constant(const char *text); // must stay
    sqlite_statement &bind(const std::optional<qint64> &number);
    // Runs it and makes it ready for the next values. False on a failure.
    bool run();

private:
    sqlite_statement &bound(int result);

    sqlite3_stmt *statement_ = nullptr;
    int next_ = 1;
    bool is_bound_ = true; // all parameters so far
};

} // namespace inventory
