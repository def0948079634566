// Writes an extractor's rows through one connection, one transaction and one statement. Counts the
// rows, and subtracts those that are lost with a transaction.
#pragma once

#include "results/database/database_context.h"
#include "results/rows/result_connection.h"
#include "results/rows/row_counter.h"

#include <QString>

#include <cstddef>
#include <optional>

namespace results {

// The texts of the sink's log lines. People search logs for them: do not reword. "%1" is replaced
// by a value.
struct sink_words
{
    const char *signature = "";          // function text of the lines, and name of the connection
    const char *insert_signature = "";   // function text of the lines on a single row
    const char *insert_starts = nullptr; // before each row; null: no line
    const char *insert_failed = "";      // %1: the database's path
    const char *insert_error = "";       // %1: the error
    const char *insert_query = "";       // %1: the statement
    const char *commit_failed = "";      // %1: the error
};

// UTF-16 units in all rows of one list. A queue repeats its host's texts in the row of every item,
// so that a small list could fill a disk.
constexpr qint64 max_stored_units = qint64(1) << 29;

// Logs a failed insert. `statement` holds the error.
void log_failed_insert(const sink_words &words, const QString &database_path,
                       const run::log_sink &log, const insert_statement &statement);

// Inserts the row and counts it, or logs the failure; false then.
template <typename Row, size_t Count>
bool insert_logged(const column_field<Row> (&columns)[Count], const Row &row,
                   const sink_words &words, const QString &database_path, const run::log_sink &log,
                   row_counter *counter, insert_statement *statement)
{
    if (words.insert_starts != nullptr)
        log.write(words.insert_starts, QString(), words.insert_signature);
    if (statement->insert_row(columns, row)) {
        counter->row_added();
        return true;
    }
    log_failed_insert(words, database_path, log, *statement);
    return false;
}

class row_sink
{
public:
    // `words` and `statement` are literals. `counter` must outlive the sink.
    row_sink(const QString &database_path, const sink_words &words, const char *statement,
             const database_context &run, row_counter *counter);
    // Commits. The rows so far are kept after a cancellation too.
    ~row_sink();
    row_sink(const row_sink &) = delete;
    row_sink &operator=(const row_sink &) = delete;

    // Opens the database and begins the transaction. False when that fails.
    bool open();
    // The error of open().
    [[nodiscard]] QString error_text() const { return connection_.error_text(); }
    // Call it before the rows of another list.
    void begin_list() { stored_units_ = 0; }
    // The rows of the current list have reached max_stored_units.
    [[nodiscard]] bool list_is_full() const { return stored_units_ > max_stored_units; }
    // Inserts the row and counts it, or logs the failure.
    template <typename Row, size_t Count>
    void insert(const column_field<Row> (&columns)[Count], const Row &row)
    {
        for (const column_field<Row> &column : columns)
            stored_units_ += (row.*column.field).size();
        if (insert_logged(columns, row, words_, database_path_, run_.log, counter_, &*statement_))
            ++uncommitted_rows_;
        else
            insert_failed();
    }
    // Commits and closes; no row can be inserted afterwards.
    void close();

private:
    // Begins another transaction if the database has rolled this one back.
    void insert_failed();
    // Logs that a transaction was lost, and subtracts its rows from the count.
    void rows_lost(const QString &error);

    QString database_path_;
    const sink_words &words_;
    const char *statement_text_;
    database_context run_;
    row_counter *counter_;
    result_connection connection_;
    std::optional<insert_statement> statement_; // dies before the connection
    qint64 uncommitted_rows_ = 0;
    qint64 stored_units_ = 0; // of the current list
    bool is_open_ = false;
};

} // namespace results
