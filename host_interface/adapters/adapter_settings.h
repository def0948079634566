// The settings that the host gives to every adapter.
#pragma once

#include "host_interface/host_records.h"

#include <QElapsedTimer>
#include <QString>
#include <QStringList>

#include <atomic>

class plugin_helper_functions;

struct adapter_settings
{
    // Takes the paths and the texts of rows from the source's record.
    void set_source(const struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info &info)
    {
        fs_extraction_source_path = info.fs_extraction_source_path;
        source_type_internal = info.source_type_internal;
        os_scheme_display = info.os_scheme_display;
    }
    // The users of earlier sources stay in the list: the host may examine several sources in turn.
    void add_users(const struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info &info)
    {
        for (const auto &account : info.system_account_QList)
            system_user_list.append(account.system_user);
        system_user_list.removeDuplicates();
        system_user_list.removeAll(QString());
    }
    void set_places(const QString &result_dir, const QString &temp_dir, const QString &db_path)
    {
        result_dir_path = result_dir;
        temp_dir_path = temp_dir;
        destination_db_path = db_path;
    }

    qint64 record_count = 0;
    int tab_processed_count = 0;
    QElapsedTimer extraction_timer;                       // invalid until the first run
    plugin_helper_functions *plugin_helper_obj = nullptr; // not owned
    QString temp_dir_path;
    QString destination_db_path;
    QString result_dir_path;
    QString fs_extraction_source_path; // ends in "/"
    QString source_type_internal;
    QString os_scheme_display;
    int engine_type = -1;
    int source_count = -1;
    std::atomic<bool> cancel_extraction_flag{false};
    QStringList system_user_list;
    QStringList essential_tab_list;
    QString plugin_name; // trimmed
};
