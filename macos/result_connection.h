// Writing rows into the result database.
#pragma once

#include "row_writer.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QString>

#include <array>
#include <cstddef>
#include <memory>

struct sqlite3;

namespace macos {

// A column of a table and the field of the row that is bound to it.
template <typename Row> struct column_field
{
    const char *column;
    QString Row::*field;
};

// A named connection with one open transaction. The destructor commits, closes and removes it, so
// rows written so far are kept after a cancellation too. Another process that holds the database
// locked is waited for when the transaction begins and when it is committed, never for a row.
class result_connection
{
public:
    // A connection of that name that is left from elsewhere is removed first.
    result_connection(const QString &name, const QString &db_path);
    ~result_connection();
    result_connection(const result_connection &) = delete;
    result_connection &operator=(const result_connection &) = delete;

    // Opens the database and begins the transaction. False when it cannot be opened.
    bool open();
    // Commits and closes; false when the rows could not be committed and are lost, as when another
    // run inside this one has taken the name. Statements must be gone.
    bool finish();
    // After a failed insert: whether the database has given up the transaction, and with it the
    // rows since it began, as it does on a full disk. If so, another one is open now.
    bool begin_after_loss();
    // Of opening or of committing.
    [[nodiscard]] QString error_text() const;
    [[nodiscard]] QSqlDatabase &database() { return database_; }
    // What runs an insert statement on the open connection, the quickest way there is.
    [[nodiscard]] std::unique_ptr<row_writer> make_writer(const char *statement) const;

private:
    void begin();

    QString name_;
    QSqlDatabase database_;
    sqlite3 *connection_ = nullptr; // the driver's own; null where it cannot be shared
    bool is_open_ = false;          // as far as this object did it
    bool may_write_ = false;        // since the transaction began
    QSqlError commit_error_;
};

// One insert statement, prepared once for many rows; again as long as the database refuses that,
// since it may be locked for a while only. Must die before its connection.
class insert_statement
{
public:
    insert_statement(const result_connection &connection, const char *statement);
    // On a connection of the host's.
    insert_statement(const QSqlDatabase &database, const char *statement);

    // Binds the row's texts in the columns' order and inserts it; a null text becomes NULL. On
    // failure nothing is written and error_text() tells why.
    template <typename Row, size_t Count>
    bool insert_row(const column_field<Row> (&columns)[Count], const Row &row)
    {
        std::array<const QString *, Count> values;
        for (size_t i = 0; i < Count; ++i)
            values[i] = &(row.*columns[i].field);
        return writer_->insert(values.data(), static_cast<int>(Count));
    }
    [[nodiscard]] QString error_text() const { return writer_->error_text(); }
    [[nodiscard]] QString executed_query() const { return writer_->executed_query(); }

private:
    std::unique_ptr<row_writer> writer_;
};

} // namespace macos
