#include "results/rows/row_sink.h"

#include <utility>

namespace results {

void log_failed_insert(const sink_words &words, const QString &database_path,
                       const run::log_sink &log, const insert_statement &statement)
{
    log.write_filled(words.insert_failed, database_path, words.insert_signature);
    log.write_filled(words.insert_error, statement.error_text(), words.insert_signature);
    log.write_filled(words.insert_query, statement.executed_query(), words.insert_signature);
}

row_sink::row_sink(const QString &database_path, const sink_words &words, const char *statement,
                   const database_context &run, row_counter *counter)
    : database_path_(database_path)
    , words_(words)
    , statement_text_(statement)
    , run_(run)
    , counter_(counter)
    , connection_(QLatin1String(words.signature), database_path, run.wait)
{
}

row_sink::~row_sink()
{
    close();
}

bool row_sink::open()
{
    is_open_ = connection_.open();
    if (is_open_)
        statement_.emplace(connection_, statement_text_);
    return is_open_;
}

void row_sink::close()
{
    statement_.reset();
    if (std::exchange(is_open_, false) && !connection_.finish())
        rows_lost(connection_.error_text());
}

void row_sink::insert_failed()
{
    if (connection_.begin_after_loss())
        rows_lost(statement_->error_text());
}

void row_sink::rows_lost(const QString &error)
{
    run_.log.write_filled(words_.commit_failed, error, words_.signature);
    counter_->rows_lost(uncommitted_rows_);
    uncommitted_rows_ = 0;
}

} // namespace results
