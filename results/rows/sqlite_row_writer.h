// Inserts rows through SQLite itself, on the connection of Qt's driver. That is faster than Qt's
// query object: bound texts stay bound, and texts go in as they are stored.
#pragma once

#include "results/rows/row_writer.h"

#include <QByteArray>
#include <QSqlDatabase>

#include <memory>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace results {

// Opens `database`; false when that fails. *connection becomes the driver's connection. It becomes
// null when the driver uses another copy of SQLite than this code: handles of one copy must not be
// given to another.
bool open_seeing_connection(QSqlDatabase *database, sqlite3 **connection);

class sqlite_row_writer final : public row_writer
{
public:
    // `connection` is the one of `database`'s driver. Must die before the connection is closed. If
    // another run has taken the name of `database`, the driver leaves the connection open; then the
    // destructor closes it.
    sqlite_row_writer(const QSqlDatabase &database, sqlite3 *connection, const char *statement);
    ~sqlite_row_writer() override;
    sqlite_row_writer(const sqlite_row_writer &) = delete;
    sqlite_row_writer &operator=(const sqlite_row_writer &) = delete;

    bool insert(const QString *const *values, int count) override;
    [[nodiscard]] QString error_text() const override { return error_text_; }
    [[nodiscard]] QString executed_query() const override { return statement_text_; }

private:
    struct bound_text
    {
        QString text;
        QByteArray utf8; // as it is stored
        bool is_bound = false;
    };

    bool prepare();
    bool bind(int index, const QString &text);
    // Keeps the connection's error, worded like Qt's driver; returns false.
    bool fail(const char *what_failed);

    QSqlDatabase database_;
    sqlite3 *connection_; // after the database is closed, valid only with a statement
    sqlite3_stmt *statement_ = nullptr;
    QString statement_text_;
    QString error_text_;
    std::vector<bound_text> bound_; // SQLite reads the texts from here
};

} // namespace results
