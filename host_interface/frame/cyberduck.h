// The object that the host creates through create_object() and drives.
//
// The host calls it through its vtable. The 18 pub_ operations follow QFrame's own, in the host's
// slot order. Never reorder them, and never put another virtual function between or before them.
// Use one thread. Only pub_cancel_extraction may come from another one.
#pragma once

#include "host_interface/host_records.h"

#include <QFrame>
#include <QString>
#include <QStringList>

#include <atomic>

class Ui_cyberduck;
class cyberduck_ios_uid;
class cyberduck_macos;
class cyberduck_winos;
class ios_uid_backup_parser; // the host's; never used
class plugin_helper_functions;

class cyberduck : public QFrame
{
    Q_OBJECT

public:
    explicit cyberduck(QWidget *parent = nullptr);
    ~cyberduck() override;

    // Call it first. The engines 0, 1 and 2 extract.
    virtual void pub_set_engine_type(int t);
    // "Cyberduck": the log, the result folder and the database have this name.
    virtual QString pub_get_artifact_name();
    // Call it before each run: resets the cancel flags and the totals.
    virtual void pub_set_essentials();
    virtual void pub_set_source_count(int n);
    virtual void pub_set_ios_uid_backup_pointer(ios_uid_backup_parser *p);
    virtual void pub_set_desktop_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_desktop_info d);
    // Debug-log settings; opens the log file.
    virtual void pub_set_general_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info g);
    virtual void pub_set_source_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info s);
    // `tabs`: names of the tabs to fill. `other` is accepted and not used.
    virtual void pub_set_essential_for_haldo_bench_extraction(QStringList tabs, QStringList other);
    // Makes the result and temporary folders below `dir`.
    virtual void pub_set_result_directory(QString dir);
    virtual void pub_create_db_tables();
    // True empties the tables of the selected tabs. A table that could not be emptied, for example
    // because the database is locked, costs log lines with "FAILED" in them: look for them, or new
    // rows will stand beside old ones.
    virtual void pub_set_clear_db(bool clear);
    virtual void pub_cancel_extraction();
    virtual void pub_find_source_file();
    // Names of further Spotlight attributes to read for each transferred file.
    virtual void pub_set_extended_attributes_list(QStringList attrs);
    virtual void pub_extract_artifacts();
    // Does nothing: there are no chats here.
    virtual void pub_generate_chat_html_pages();
    // Call it last: removes the temporary folder and closes the log file.
    virtual void pub_remove_temporary_asthetics();

Q_SIGNALS:
    // Records written so far, over all sources since the last pub_set_essentials. Falls when a
    // transaction is lost, as on a full disk: its rows were counted and are not in the database.
    void signal_extracted_records_of_plugin_overall(qint64 records);
    // Tabs finished so far.
    void signal_tab_processed_of_plugin_overall(int tabs);

public Q_SLOTS:
    void slot_extracted_records_of_plugin(qint64 n);
    void slot_total_tabs_processed(int n);
    void slot_m_process_finished(int status);

private:
    enum class scheme { macos, ios_uid, winos, unknown };

    void set_essentials();
    // The source's scheme. An unknown one is logged under `function`.
    [[nodiscard]] scheme source_scheme(const char *function);
    void hand_over_totals();

    // result_database.cpp
    void set_destination_location(QString dir);
    void create_destination_database();
    void create_db_tables();
    void clear_db_tables();

    Ui_cyberduck *ui;
    bool process_finished_flag;
    qint64 records_total;
    int tabs_total;
    QString temp_dir_path;
    QString destination_db_path;
    QString result_dir_path;
    int engine_type;
    std::atomic<bool> cancel_extraction_flag;
    QString os_scheme_internal;
    QStringList essential_tab_list;
    // Qt children of the frame, which deletes them.
    plugin_helper_functions *plugin_helper_obj;
    cyberduck_macos *macos_adapter;
    cyberduck_ios_uid *ios_uid_adapter;
    cyberduck_winos *winos_adapter;
};
