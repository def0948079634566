// What a run comes to: counts that add up, lists without rows, hints. Shown at the end of a run,
// and kept in run.json.
#pragma once

#include "host/driving/extraction_run.h"
#include "host/findings/result_place.h"
#include "host/findings/run_failures.h"
#include "host/options/extract_options.h"
#include "host/sources/run_sources.h"
#include "host/sources/source_view.h"

#include <QDateTime>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace host {

// Of one user and tab of one source. Without an inventory only the rows are known.
struct tab_account
{
    int source = 0;
    QString user;
    QString tab;
    std::optional<qint64> found;
    qint64 read = 0;
    qint64 skipped = 0; // those whose tab was not asked for included
    qint64 failed = 0;
    qint64 rows = 0;
    QString oldest; // ISO 8601 in UTC; null when no row has a time
    QString newest;
};

struct list_without_rows
{
    QString path;
    QString status;
    QString reason;
};

struct run_report
{
    bool is_partial = false;
    run_result result;
    std::vector<tab_account> tabs;
    std::vector<list_without_rows> without_rows; // the first ones
    qint64 without_rows_count = 0;
    qint64 incomplete_lists =
        0; // skipped though asked for, failed, or with other rows than promised
    QStringList hints;
    QString problem; // why the databases could not be read; empty: they were
};

struct report_request
{
    QString database;
    QString inventory;
    QStringList tabs;
    int first_source = 1;   // those before were of an earlier run
    qint64 most_lists = -1; // that are named; negative: all
};

// Reads both databases.
[[nodiscard]] run_report report_of(const report_request &request);

// The highest number of a source in a result database; 0 without any.
[[nodiscard]] int highest_source(const QString &database);

struct described_run
{
    const extract_options *options = nullptr;
    const std::vector<run_source> *sources = nullptr;
    const std::vector<source_view> *views = nullptr; // one for each source, without root for most
    QDateTime started;                               // UTC
};

// Says in run.json that a run is going on.
[[nodiscard]] std::optional<failure> write_running(const result_place &place,
                                                   const described_run &run);
// Writes run.json, with the hashes of the databases.
[[nodiscard]] std::optional<failure>
write_ended(const result_place &place, const described_run &run, const run_report &report);

// The tables of counts, the lists without rows, and the hints, as text for people.
[[nodiscard]] QString report_text(const run_report &report, bool with_hints);
[[nodiscard]] QJsonObject report_json(const run_report &report);

} // namespace host
