// Writing rows into the result database.
#pragma once

#include "results/database/lock_wait.h"
#include "results/rows/row_writer.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QString>

#include <array>
#include <cstddef>
#include <memory>

struct sqlite3;

namespace results {

// A column of a table and the field of the row that is bound to it.
template <typename Row> struct column_field
{
    const char *column;
    QString Row::*field;
};

// A named connection with one open transaction. The destructor commits, closes and removes it, so
// that the rows so far are kept after a cancellation too. If another process has locked the
// database, the connection waits when the transaction begins and when rows are committed, never for
// a row.
class result_connection
{
public:
    // Removes an older connection of that name first.
    result_connection(const QString &name, const QString &db_path, lock_wait &wait);
    ~result_connection();
    result_connection(const result_connection &) = delete;
    result_connection &operator=(const result_connection &) = delete;

    // Opens the database and begins the transaction. False when it cannot be opened.
    bool open();
    // Commits and closes. False when the rows could not be committed and are lost, for example
    // because another run inside this one has taken the name. Destroy the statements first.
    bool finish();
    // Call it after a failed insert. True when the database has rolled the transaction back, as it
    // does on a full disk: then its rows are lost and another transaction is open.
    bool begin_after_loss();
    // The error of opening or committing.
    [[nodiscard]] QString error_text() const;
    [[nodiscard]] QSqlDatabase &database() { return database_; }
    // The fastest writer for this connection, which must be open.
    [[nodiscard]] std::unique_ptr<row_writer> make_writer(const char *statement) const;

private:
    void begin();
    [[nodiscard]] bool has_written() const;
    bool commit();

    QString name_;
    lock_wait &wait_;
    QSqlDatabase database_;
    sqlite3 *connection_ = nullptr; // the driver's; null when it cannot be shared
    bool is_open_ = false;          // by this object
    QSqlError commit_error_;
};

// One insert statement, prepared once for many rows. While preparing fails, each row tries again:
// the database may be locked for a short time only. Must die before its connection.
class insert_statement
{
public:
    insert_statement(const result_connection &connection, const char *statement);
    // On a connection that the host opened.
    insert_statement(const QSqlDatabase &database, const char *statement);

    // Binds the row's texts in the columns' order and inserts it. A null text becomes NULL. On
    // failure nothing is written and error_text() holds the reason.
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

} // namespace results
