// Adapter for iOS backups: takes every setting so that the frame can treat all schemes alike; the
// client does not exist there, so it finds and extracts nothing.
#pragma once

#include "plugin/host_records.h"

#include <QElapsedTimer>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <atomic>
#include <memory>

class ios_uid_backup_parser;
class plugin_helper_functions;

class cyberduck_ios_uid : public QWidget
{
    Q_OBJECT

public:
    explicit cyberduck_ios_uid(QWidget *parent = nullptr);
    ~cyberduck_ios_uid() override;

    // Each keeps its argument (the two records of machine and settings are not used).
    void ios_uid_set_plugin_helper_obj(plugin_helper_functions *helper); // not owned
    void ios_uid_set_record_count(qint64 count);
    void ios_uid_set_tab_processed_count(int count);
    void ios_uid_set_desktop_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_desktop_info info);
    void ios_uid_set_general_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info info);
    void ios_uid_set_source_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info info);
    void ios_uid_set_essentials();              // arms the cancel flag again
    void ios_uid_set_plugin_name(QString name); // trimmed
    void ios_uid_set_destination_location(QString result_dir, QString temp_dir, QString db_path);
    void ios_uid_set_essential_for_haldo_bench_extraction(QStringList tabs);
    void ios_uid_set_engine_type(int type);
    void ios_uid_cancel_extraction(); // may come from another thread
    void ios_uid_set_source_count(int count);
    void ios_uid_set_ios_backup_pointer(ios_uid_backup_parser *parser); // never looked into

    void ios_uid_find_artifacts_source();
    // Emits the record count, unchanged.
    void ios_uid_extract_artifacts();

Q_SIGNALS:
    void signal_extracted_records_of_plugin_ios_uid(qint64 records);
    void signal_total_tabs_processed_ios_uid(int tabs);

private:
    void find_source_file();
    void extract_plugin_artifacts();

    qint64 record_count = 0;
    int tab_processed_count = 0;
    std::unique_ptr<QElapsedTimer> extraction_timer;
    plugin_helper_functions *plugin_helper_obj = nullptr;
    QString temp_dir_path;
    QString destination_db_path;
    QString result_dir_path;
    QString fs_extraction_source_path;
    QString source_type_internal;
    int engine_type = -1;
    std::atomic<bool> cancel_extraction_flag{false};
    int source_count = -1;
    QString os_scheme_display;
    QStringList essential_tab_list;
    QString plugin_name;
    ios_uid_backup_parser *ios_uid_backup_pointer = nullptr;
};
