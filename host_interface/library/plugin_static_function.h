// The library that the host's plug-ins share: debug log, database helpers, dates, value filters,
// paths of the examined source, single values of property lists. Everything is static. The class
// keeps the process-wide state that the host sets before a run, and forwards everything else. The
// rooms that do the work say what an operation does.
//
// Names, argument order and the copied arguments are the host's. Nothing throws. A failure is a
// line in the debug log and an empty result. Use it on the thread on which the host calls the
// plug-in.
#pragma once

#include "extraction/source/posix_times.h"
#include "extraction/source/source_paths.h"
#include "extraction/copies/used_dates.h"
#include "host_interface/host_records.h"
#include "platform/opaque_types.h"
#include "results/database/database_context.h"
#include "run/cancellation.h"
#include "run/log_sink.h"

#include <QDateTime>
#include <QFile>
#include <QList>
#include <QPair>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <atomic>

// The host's names for them.
using struct_posix_timestamp = extraction::posix_times;
using struct_used_date = extraction::usage_dates;

class plugin_static_function : public QWidget
{
    Q_OBJECT

public:
    explicit plugin_static_function(QWidget *parent = nullptr);
    ~plugin_static_function() override;

    // --- State that the host sets

    static bool debug_mode_status_bool;
    static bool debug_print_in_file_bool;
    static bool debug_print_on_terminal_bool;
    static bool debug_encryption_status_bool;
    static QString debug_file_path_QString;
    static QFile debug_file_regular_QFile;
    static int type_engine_int;
    static int source_count_int;
    // Set from another thread during a run. Long loops poll it.
    static std::atomic<bool> bool_cancel_extraction;
    static QString source_os_version_full;
    static QList<struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_system_account> system_account_QList;

    static void set_essentials();
    static void set_engine_type(int type);
    static void set_general_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info info);
    static void set_source_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info info);
    static void set_desktop_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_desktop_info info);
    static void set_source_count(int count);
    static void set_cancel_extraction(bool cancel);
    // "Source" and the count: "Source1".
    static QString get_source_count_name();
    static void clear_variables_haldo_and_artifact_common_source_info(
        struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info &info);
    static void clear_variables_haldo_and_artifact_common_desktop_info(
        struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_desktop_info &info);
    static void clear_variables_haldo_and_artifact_common_general_info(
        struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info &info);

    // --- Debug log

    static void open_debug_file();
    static void close_debug_file();
    // One line: `function_info` is the caller's full signature, reduced to its qualified name.
    static void app_debug(QString message, QString function_info);
    // A token of the built-in cipher; empty for an empty text. `caller` is not used.
    static QString encrypt_string(QString text, QString caller);

    // --- One statement against a database; `caller` is for failure lines.

    static bool execute_db_command_by_dbpath(QString command, QString db_path, QString caller);
    static bool execute_db_command_with_addbindvalue_by_dbpath(QString command, QStringList values,
                                                               QString db_path, QString caller);
    static bool execute_db_command_by_dbreference(QString command, QSqlDatabase &db,
                                                  QString caller);
    static bool execute_db_command_with_addbindvalue_by_dbreference(QString command,
                                                                    QStringList values,
                                                                    QSqlDatabase &db,
                                                                    QString caller);
    // The trimmed texts of result column `column` (from 0), one per row.
    static QStringList get_stringlist_from_db_by_dbreference(QString command, int column,
                                                             QSqlDatabase &db, QString caller);
    static QStringList get_stringlist_from_db_with_addbindvalues_by_dbreference(
        QString command, QStringList values, int column, QSqlDatabase &db, QString caller);
    static QStringList get_stringlist_from_db_by_dbpath(QString command, int column,
                                                        QString db_path, QString caller);
    static QStringList get_stringlist_from_db_with_addbindvalues_by_dbpath(
        QString command, QStringList values, int column, QString db_path, QString caller);
    static bool check_value_existence_in_db_by_dbreference(QString command, int column,
                                                           QString value, QSqlDatabase db);
    static QStringList get_total_tables_list_by_dbpath(QString db_path, QString caller);

    // --- Dates and times: texts of seconds since 1970 UTC, unless a comment says otherwise; null
    // or empty for a text that is no time.

    static QString convert_apple_time_to_epoch(QString value);
    static QString convert_google_time_to_epoch(QString value);
    // "0530" gives 19800 s.
    static int convert_timezone_to_seconds(QString offset);
    static QString convert_timestamp_to_human_readable_in_UTC(QString value);
    static QString get_human_readable_time(QString seconds);
    static QString convert_human_readable_to_epoch_1(QString value);
    static QString convert_human_readable_to_epoch_2(QString value);
    static QString convert_human_readable_to_epoch_3(QString value);
    static QString convert_T_Z_time_to_epoch(QString value);
    static QDateTime get_datetime_from_string_with_iso_date(QString value);
    static struct_posix_timestamp get_posix_timestamp(QString path, QString prefix);
    static qint64 convert_nsdate_to_epoch(NSDate *date, NSObject *object);
    // `file_path` is reachable here. Asks the metadata catalog of the current source.
    static struct_used_date extract_used_date(QString file_path);

    // --- Value filters and text helpers

    static QString get_filtered_number_value(QString text);
    static QString get_filtered_boolean_value(QString text);
    static QString get_filtered_cfstring_value(QString text);
    static QString get_filtered_wherefrom_value(QString text);
    static QString get_filtered_string_value(QString text);
    static QString get_filtered_date_value(QString text);
    static QString human_readable_size(QString text);
    static QString mining_size(QString path);
    static QString mining_suffix(QString text);
    static QString convert_string_to_unicode(QString text);
    static QString get_source_os_scan_version(QString text);
    static QStringList get_unmatched_varible_list_of_parentlist(QStringList parent,
                                                                QStringList child);

    // --- Files and folders

    static void remove_directory(QString path);
    static bool is_file_exist_in_dir(QString dir_path, QString file_name, QString caller);
    // An unused file name in `dir_path`, which is made if missing. Null when cancelled.
    static QString get_available_file(QString file_path, QString dir_path, QString caller);
    static void copy_directory(QString source, QString destination);

    // --- Paths between source and rows

    static QString get_relative_file_path(QString path, QString user, QString source_type);
    // First: source_file. Second: artifacts_relation_source_file, null unless a home folder.
    static QPair<QString, QString> get_final_artifact_source_file(QString path, QString user,
                                                                  QString source_type);
    static QString get_complete_file_path(QString path, QString user, QString source_type);
    // First: user name. Second: domain user name.
    static QPair<QString, QString> extract_user_name_from_sourcefile(QString file_path,
                                                                     QString fs_root);

    // --- Single values of a property list. `key` and `dictionary` are an NSString and an
    // NSDictionary on macOS, a platform::dictionary_key and a platform::dictionary_source elsewhere
    // (platform/foundation_values.h). The caller owns both.

    static QString convert_cfstring_to_qstring(const __CFString *text);
    static QString get_nsstring_values(void *key, void *dictionary);
    static QString get_nsnumber_values(void *key, void *dictionary);
    static QString get_nsnumber_values_yes_no(void *key, void *dictionary);
    static QString get_nsnumber_key_and_value_yes_no(void *key, void *dictionary, QString label);
    static QString get_nsstring_key_and_values(void *key, void *dictionary, QString label);
    static QString get_nsnumber_key_and_values(void *key, void *dictionary, QString label);
    static QString get_nsarray_key_and_values(void *key, void *dictionary, QString label);

    // --- The run as the rooms below see it

    // Lines go through app_debug.
    static const run::log_sink &run_log();
    // Requested when bool_cancel_extraction is set.
    static run::cancellation run_cancellation();
    static results::database_context database_context();
    // The accounts of the current source.
    static QList<extraction::source_user> source_users();
};
