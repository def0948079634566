// Adapter for macOS sources. It keeps the settings, the counts and the folders that were found, and
// calls extraction/, which does the work.
#pragma once

#include "extraction/source/extraction_context.h"
#include "extraction/extraction_driver.h"
#include "extraction/source/source_discovery.h"
#include "host_interface/adapters/adapter_settings.h"
#include "host_interface/adapters/attribute_record.h"
#include "host_interface/host_records.h"
#include "results/rows/row_counter.h"

#include <QList>
#include <QPair>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QWidget>

class plugin_helper_functions;

class cyberduck_macos : public QWidget,
                        private results::row_counter,
                        private extraction::progress_listener
{
    Q_OBJECT

public:
    explicit cyberduck_macos(QWidget *parent = nullptr);
    ~cyberduck_macos() override;

    // Each keeps its argument. The records of machine and settings are not used.
    void macos_set_plugin_helper_obj(plugin_helper_functions *helper); // not owned
    void macos_set_record_count(qint64 count);
    void macos_set_tab_processed_count(int count);
    void macos_set_desktop_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_desktop_info info);
    void macos_set_general_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info info);
    // The users of earlier sources stay in the list: the host may examine several sources in turn.
    void macos_set_source_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info info);
    void macos_set_essentials();              // resets the cancel flag
    void macos_set_plugin_name(QString name); // trimmed
    void macos_set_destination_location(QString result_dir, QString temp_dir, QString db_path);
    // Drops the names that the transfers extractor reads anyway.
    void macos_set_extended_attributes_list(QStringList attributes);
    void macos_set_essential_for_haldo_bench_extraction(QStringList tabs);
    void macos_set_engine_type(int type);
    void macos_cancel_extraction(); // may come from another thread
    void macos_set_source_count(int count);

    // While rows are written, the record count is emitted at most once in this time. Default: 1000.
    void set_signal_interval_ms(qint64 interval) { signal_interval_ms_ = interval; }

    // Lists the users' folders and files; needs the source record.
    void macos_find_artifacts_source();
    // Runs the extractors of the selected tabs and emits the counts.
    void macos_extract_artifacts();

    // Each extractor writes its rows in one transaction and adds them to the record count. Failures
    // are lines of the debug log.
    void xcode_extract_bookmarks();
    void xcode_extract_history();
    void xcode_extract_transfers();
    void xcode_extract_preferences(QString plist_path, QString user_name);
    // One preference row through a connection that the caller holds open.
    void insert_values_fun(QString label, QString value, QSqlDatabase &database, QString plist_path,
                           QString user_name);

    // `file_path` is reachable here. The record is empty when the file is missing or unknown.
    struct_GLOBAL_ARTIFACT_cfstring_attributes extract_cfstring_attributes(QString file_path);
    // Latitude and longitude in degrees with 6 significant digits; null where unknown.
    QPair<QString, QString> extract_longi_lati_attributes(QString file_path);
    // Reads of each path the attributes at the same index. First: the values, separated by
    // ";++::++;". Second: an XML document of names and values.
    QPair<QString, QString> get_extended_attributes(QStringList file_paths,
                                                    QList<QStringList> attribute_lists);

Q_SIGNALS:
    void signal_extracted_records_of_plugin_macos(qint64 records);
    void signal_total_tabs_processed_macos(int tabs);

private:
    void find_source_file();
    void filter_extended_attribute_list();
    void extract_plugin_artifacts();

    void row_added() override;
    void rows_lost(qint64 rows) override;
    void extractor_ended() override;
    void tab_ended() override;

    // The source and the run for extraction/. Valid as long as this object.
    [[nodiscard]] extraction::extraction_context context();

    adapter_settings settings_;
    QStringList extended_attributes_list;
    extraction::client_data found_;
    qint64 signal_interval_ms_ = 1000;
};
