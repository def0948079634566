#include "host_driver.h"

#include <QElapsedTimer>
#include <QFile>

host_driver::host_driver(const source_builder &source, const QStringList &users)
    : source_(source)
    , users_(users)
{
    QObject::connect(&plugin_, &cyberduck::signal_extracted_records_of_plugin_overall,
                     [this](qint64 records) {
                         outcome_.records = records;
                         if (on_records)
                             on_records(records);
                     });
    QObject::connect(&plugin_, &cyberduck::signal_tab_processed_of_plugin_overall,
                     [this](int tabs) {
                         outcome_.tabs = tabs;
                         if (on_tabs)
                             on_tabs(tabs);
                     });
}

void host_driver::set_up(bool clear)
{
    plugin_.pub_set_engine_type(0);
    plugin_.pub_set_essentials();
    plugin_.pub_set_engine_type(0);
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info settings;
    settings.debug_mode_status = true;
    settings.debug_print_in_file = true;
    settings.debug_file_path = log_folder_.filePath(QStringLiteral("debug.log"));
    plugin_.pub_set_general_info(settings);
    plugin_.pub_set_source_count(1);
    plugin_.pub_set_source_info(source_.source_info(users_, QStringLiteral("macOS_Image")));
    plugin_.pub_set_essential_for_haldo_bench_extraction(
        {QStringLiteral("bookmarks"), QStringLiteral("history"), QStringLiteral("transfers"),
         QStringLiteral("preferences")},
        {});
    plugin_.pub_set_extended_attributes_list({QStringLiteral("kMDItemFSSize")});
    plugin_.pub_set_result_directory(source_.result_folder());
    plugin_.pub_create_db_tables();
    plugin_.pub_set_clear_db(clear);
    plugin_.pub_find_source_file();
}

run_outcome host_driver::run(bool clear)
{
    outcome_ = {};
    QElapsedTimer timer;
    timer.start();
    set_up(clear);
    if (on_records)
        plugin_.findChild<cyberduck_macos *>()->set_signal_interval_ms(-1);
    if (before_extraction)
        before_extraction();
    plugin_.pub_extract_artifacts();
    plugin_.pub_remove_temporary_asthetics();
    outcome_.elapsed_ms = timer.elapsed();
    outcome_.log = take_log();
    return outcome_;
}

QStringList host_driver::take_log()
{
    QFile file(log_folder_.filePath(QStringLiteral("debug.log")));
    QStringList messages;
    if (!file.open(QIODevice::ReadOnly))
        return messages;
    const QString marker = QStringLiteral("]:-- ");
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine());
        messages.append(line.mid(line.indexOf(marker) + marker.size()).chopped(1));
    }
    file.remove();
    return messages;
}
