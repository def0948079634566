#include "host/driving/extraction_run.h"

#include "results/database/result_tables.h"

#include <QElapsedTimer>

namespace host {

namespace {

// The order in which the plug-in extracts, not that of the option.
QStringList in_extraction_order(const QStringList &tabs)
{
    QStringList ordered;
    for (const char *tab : results::tab_names) {
        if (tabs.contains(QLatin1String(tab)))
            ordered.append(QLatin1String(tab));
    }
    return ordered;
}

struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info log_settings(const extract_options &options,
                                                                  const QString &own_log)
{
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info settings;
    // Always on: only the log says what was not read.
    settings.debug_mode_status = true;
    settings.debug_print_in_file = true;
    settings.debug_print_on_terminal = options.debug_terminal;
    settings.debug_encryption_status = options.encipher_log;
    settings.debug_file_path = options.debug_log.isEmpty() ? own_log : options.debug_log;
    return settings;
}

} // namespace

run_observer::run_observer(cyberduck &plugin, progress_display &display, qint64 cancel_after)
    : plugin_(plugin)
    , display_(display)
    , cancel_after_(cancel_after)
{
    // By text: this program does not link the plug-in's signals.
    connect(&plugin, SIGNAL(signal_extracted_records_of_plugin_overall(qint64)), this,
            SLOT(slot_records(qint64)));
    connect(&plugin, SIGNAL(signal_tab_processed_of_plugin_overall(int)), this,
            SLOT(slot_tabs(int)));
}

void run_observer::cancel()
{
    if (!cancelled_.exchange(true))
        plugin_.pub_cancel_extraction();
}

void run_observer::slot_records(qint64 count)
{
    records_ = count;
    if (cancel_after_ > 0 && count >= cancel_after_)
        cancel();
    display_.update(records_, tabs_);
}

void run_observer::slot_tabs(int count)
{
    tabs_ = count;
    display_.update(records_, tabs_);
}

run_result run_extraction(cyberduck &plugin, const extract_options &options,
                          const extraction_job &job, run_stop *stop)
{
    QElapsedTimer timer;
    timer.start();
    progress_display display(options.progress, in_extraction_order(options.tabs),
                             job.expected_records);
    run_observer observer(plugin, display, options.cancel_after);

    plugin.pub_set_engine_type(options.engine);
    plugin.pub_set_essentials();
    // Not earlier: the call before resets the flags that a cancellation sets.
    stop->set_hook([&observer] { observer.cancel(); });
    // It reset the engine type as well, which the log lines name.
    plugin.pub_set_engine_type(options.engine);
    plugin.pub_set_general_info(log_settings(options, job.own_log));
    plugin.pub_set_desktop_info({});
    plugin.pub_set_source_count(job.source_count);
    plugin.pub_set_source_info(job.source);
    if (options.scheme == QLatin1String("iOS_UID"))
        plugin.pub_set_ios_uid_backup_pointer(nullptr);
    plugin.pub_set_essential_for_haldo_bench_extraction(options.tabs, {});
    plugin.pub_set_extended_attributes_list(options.attributes);
    plugin.pub_set_result_directory(job.result_directory);
    plugin.pub_create_db_tables();
    plugin.pub_set_clear_db(!job.keeps_rows);
    plugin.pub_find_source_file();
    plugin.pub_extract_artifacts();
    stop->set_hook({});
    const bool cancelled = observer.is_cancelled();
    plugin.pub_generate_chat_html_pages();
    plugin.pub_remove_temporary_asthetics();
    display.finish();
    return {observer.records(), observer.tabs(), cancelled,
            static_cast<double>(timer.nsecsElapsed()) / 1e9};
}

} // namespace host
