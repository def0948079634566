// The records in which the host describes the examined source, its own machine and its settings.
// The host fills them and passes them by value. Names, order and types of the members are its
// interface. Members that this plug-in does not use have neutral names.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// One user account of the examined source.
struct struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_system_account
{
    QString system_user; // user name; also the name of the home folder below Users/
    QString domain_user; // the account's name in its domain, empty for a local account

    bool operator==(const struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_system_account &other) const
    {
        return system_user == other.system_user && domain_user == other.domain_user;
    }
};

// The examined source.
struct struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info
{
    QString fs_extraction_source_path; // where its file system is reachable here; ends in "/"
    QString source_type_internal;      // "macOS_Home_Directory" marks a single home folder
    QString os_scheme_display;         // the scheme as the examiner sees it; stored in every row
    QString os_scheme_internal;        // "macOS", "iOS_UID" or "winOS"
    QString os_version_full;           // the source's full system version
    QList<struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_system_account> system_account_QList;
    QString unread_text_7;
    QString unread_text_8;
    QStringList unread_list_9;
    QString unread_text_10;
    QString unread_text_11;
    QString unread_text_12;
    QString unread_text_13;
};

// The examiner's machine. This plug-in does not read it.
struct struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_desktop_info
{
    QString unread_text_1;
    QString unread_text_2;
    bool unread_flag_3 = false;
    QString unread_text_4;
    QString unread_text_5;
};

// The general settings of the case. This plug-in reads those of the debug log.
struct struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info
{
    bool unread_flag_1 = false;
    bool debug_mode_status = false;       // logging at all
    bool debug_print_on_terminal = false; // lines to Qt's debug stream
    bool debug_print_in_file = false;     // lines to debug_file_path
    bool debug_encryption_status = false; // encipher what goes to the file
    QString debug_file_path;
};
