// Drives the plug-in's object through one run, in the order that it expects.
#pragma once

#include "host/options/extract_options.h"
#include "host/driving/interrupt.h"
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

// `source` describes the source, `result_directory` is absolute. Progress is shown meanwhile. The
// plug-in's log goes to `own_log` unless the options name another.
run_result run_extraction(cyberduck &plugin, const extract_options &options,
                          const struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info &source,
                          const QString &result_directory, const QString &own_log,
                          interrupt_watcher &interrupts);

} // namespace host
