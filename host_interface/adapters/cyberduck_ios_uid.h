// Adapter for iOS backups. It takes every setting, so that the frame can treat all schemes alike.
// The client does not exist on iOS, so the adapter finds and extracts nothing.
#pragma once

#include "host_interface/adapters/adapter_settings.h"
#include "host_interface/host_records.h"

#include <QString>
#include <QStringList>
#include <QWidget>

class ios_uid_backup_parser;
class plugin_helper_functions;

class cyberduck_ios_uid : public QWidget
{
    Q_OBJECT

public:
    explicit cyberduck_ios_uid(QWidget *parent = nullptr);
    ~cyberduck_ios_uid() override;

    // Each keeps its argument. The records of machine and settings are not used.
    void ios_uid_set_plugin_helper_obj(plugin_helper_functions *helper); // not owned
    void ios_uid_set_record_count(qint64 count);
    void ios_uid_set_tab_processed_count(int count);
    void ios_uid_set_desktop_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_desktop_info info);
    void ios_uid_set_general_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info info);
    void ios_uid_set_source_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info info);
    void ios_uid_set_essentials();              // resets the cancel flag
    void ios_uid_set_plugin_name(QString name); // trimmed
    void ios_uid_set_destination_location(QString result_dir, QString temp_dir, QString db_path);
    void ios_uid_set_essential_for_haldo_bench_extraction(QStringList tabs);
    void ios_uid_set_engine_type(int type);
    void ios_uid_cancel_extraction(); // may come from another thread
    void ios_uid_set_source_count(int count);
    void ios_uid_set_ios_backup_pointer(ios_uid_backup_parser *parser); // never used

    void ios_uid_find_artifacts_source();
    // Emits the record count, unchanged.
    void ios_uid_extract_artifacts();

Q_SIGNALS:
    void signal_extracted_records_of_plugin_ios_uid(qint64 records);
    void signal_total_tabs_processed_ios_uid(int tabs);

private:
    void find_source_file();
    void extract_plugin_artifacts();

    adapter_settings settings_;
    ios_uid_backup_parser *ios_uid_backup_pointer = nullptr;
};
