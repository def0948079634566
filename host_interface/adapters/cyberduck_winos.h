// Adapter for Windows sources. It takes every setting, so that the frame can treat all schemes
// alike. It finds and extracts nothing: what the client leaves on Windows is not known.
#pragma once

#include "host_interface/adapters/adapter_settings.h"
#include "host_interface/host_records.h"

#include <QString>
#include <QStringList>
#include <QWidget>

class plugin_helper_functions;

class cyberduck_winos : public QWidget
{
    Q_OBJECT

public:
    explicit cyberduck_winos(QWidget *parent = nullptr);
    ~cyberduck_winos() override;

    // Each keeps its argument. The records of machine and settings are not used.
    void winos_set_plugin_helper_obj(plugin_helper_functions *helper); // not owned
    void winos_set_record_count(qint64 count);
    void winos_set_tab_processed_count(int count);
    void winos_set_desktop_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_desktop_info info);
    void winos_set_general_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info info);
    void winos_set_source_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info info);
    void winos_set_essentials();              // resets the cancel flag
    void winos_set_plugin_name(QString name); // trimmed
    void winos_set_destination_location(QString result_dir, QString temp_dir, QString db_path);
    void winos_set_essential_for_haldo_bench_extraction(QStringList tabs);
    void winos_set_engine_type(int type);
    void winos_cancel_extraction(); // may come from another thread
    void winos_set_source_count(int count);

    void winos_find_artifacts_source();
    // Emits the record count, unchanged.
    void winos_extract_artifacts();

Q_SIGNALS:
    void signal_extracted_records_of_plugin_winos(qint64 records);
    void signal_total_tabs_processed_winos(int tabs);

private:
    void find_source_file();
    void extract_plugin_artifacts();

    adapter_settings settings_;
};
