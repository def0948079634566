// Drives the plug-in's object through one run, in the order that it expects.
#pragma once

#include "host/options/extract_options.h"
#include "host/driving/run_stop.h"
#include "host_interface/frame/cyberduck.h"
#include "host/display/progress_display.h"

#include <QObject>

#include <atomic>

namespace host {

struct run_result
{
    qint64 records = 0; // the last count of the plug-in's signal
    int tabs = 0;       // the same
    bool cancelled = false;
    double seconds = 0;
};

// Receives the plug-in's signals and cancels it. cancel() may be called from any thread.
class run_observer : public QObject
{
    Q_OBJECT

public:
    // Connects itself; `plugin` and `display` must outlive it. `cancel_after` records end the
    // run; 0: never.
    run_observer(cyberduck &plugin, progress_display &display, qint64 cancel_after);

    void cancel();

    [[nodiscard]] qint64 records() const { return records_; }
    [[nodiscard]] int tabs() const { return tabs_; }
    [[nodiscard]] bool is_cancelled() const { return cancelled_; }

public Q_SLOTS:
    void slot_records(qint64 count);
    void slot_tabs(int count);

private:
    cyberduck &plugin_;
    progress_display &display_;
    qint64 cancel_after_;
    qint64 records_ = 0;
    int tabs_ = 0;
    std::atomic<bool> cancelled_{false};
};

// One run of the plug-in.
struct extraction_job
{
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info source;
    int source_count = 1;
    bool keeps_rows = false;  // of an earlier run
    QString result_directory; // absolute
    QString own_log;          // where the plug-in's log goes unless the options name another place
    qint64 expected_records = -1; // negative: unknown
};

// Progress is shown meanwhile.
run_result run_extraction(cyberduck &plugin, const extract_options &options,
                          const extraction_job &job, run_stop *stop);

} // namespace host
