#include "host_interface/library/plugin_static_function.h"

#include "evidence/folders/folder_size.h"
#include "evidence/copies/working_files.h"
#include "log/debug_log.h"
#include "platform/foundation_value_readers.h"
#include "platform/spotlight_item.h"
#include "results/database/database_commands.h"
#include "text/dates/date_conversion.h"
#include "text/list_difference.h"
#include "text/size_and_suffix.h"
#include "text/system_version.h"
#include "text/escapes/unicode_escapes.h"
#include "text/value_filters.h"

bool plugin_static_function::debug_mode_status_bool = false;
bool plugin_static_function::debug_print_in_file_bool = false;
bool plugin_static_function::debug_print_on_terminal_bool = false;
bool plugin_static_function::debug_encryption_status_bool = false;
QString plugin_static_function::debug_file_path_QString;
QFile plugin_static_function::debug_file_regular_QFile;
int plugin_static_function::type_engine_int = -1;
int plugin_static_function::source_count_int = -1;
std::atomic<bool> plugin_static_function::bool_cancel_extraction{false};
QString plugin_static_function::source_os_version_full;
QList<struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_system_account>
    plugin_static_function::system_account_QList;

namespace {

// What the class keeps for the rooms below it.
class debug_log_sink final : public run::log_sink
{
public:
    [[nodiscard]] bool is_on() const override
    {
        return plugin_static_function::debug_mode_status_bool;
    }
    using run::log_sink::write;
    void write(const QString &message, const QString &function) const override
    {
        plugin_static_function::app_debug(message, function);
    }
};

const debug_log_sink log_lines;
results::lock_wait database_wait;
QSet<QString> left_connections; // of the database helpers
QString source_root;            // of the current source
// Made on first use: few hosts ask for the metadata of a single file.
std::unique_ptr<extraction::used_dates_reader> used_dates;

results::database_commands commands()
{
    return results::database_commands(plugin_static_function::database_context());
}

} // namespace

plugin_static_function::plugin_static_function(QWidget *parent)
    : QWidget(parent)
{
}

plugin_static_function::~plugin_static_function() = default;

const run::log_sink &plugin_static_function::run_log()
{
    return log_lines;
}

run::cancellation plugin_static_function::run_cancellation()
{
    return run::cancellation(bool_cancel_extraction);
}

results::database_context plugin_static_function::database_context()
{
    return {log_lines, run_cancellation(), database_wait, &left_connections};
}

QList<extraction::source_user> plugin_static_function::source_users()
{
    QList<extraction::source_user> users;
    for (const auto &account : qAsConst(system_account_QList))
        users.append({account.system_user, account.domain_user});
    return users;
}

// --- State that the host sets

void plugin_static_function::set_essentials()
{
    debug_mode_status_bool = false;
    debug_print_in_file_bool = false;
    debug_print_on_terminal_bool = false;
    debug_file_path_QString.clear();
    type_engine_int = -1;
    source_count_int = -1;
    bool_cancel_extraction = false;
    database_wait.reset();
    system_account_QList.clear();
}

void plugin_static_function::set_engine_type(int type)
{
    type_engine_int = type;
}

void plugin_static_function::set_general_info(
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info info)
{
    debug_file_path_QString = info.debug_file_path;
    debug_mode_status_bool = info.debug_mode_status;
    debug_print_in_file_bool = info.debug_print_in_file;
    debug_print_on_terminal_bool = info.debug_print_on_terminal;
    debug_encryption_status_bool = info.debug_encryption_status;
    open_debug_file();
}

void plugin_static_function::set_source_info(
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info info)
{
    source_os_version_full = info.os_version_full;
    if (system_account_QList != info.system_account_QList)
        system_account_QList = info.system_account_QList;
    source_root = info.fs_extraction_source_path;
    used_dates.reset();
}

void plugin_static_function::set_desktop_info(
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_desktop_info info)
{
    Q_UNUSED(info)
}

void plugin_static_function::set_source_count(int count)
{
    source_count_int = count;
}

void plugin_static_function::set_cancel_extraction(bool cancel)
{
    bool_cancel_extraction = cancel;
}

QString plugin_static_function::get_source_count_name()
{
    return QStringLiteral("Source") + QString::number(source_count_int);
}

void plugin_static_function::clear_variables_haldo_and_artifact_common_source_info(
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info &info)
{
    // Members 12 and 13 keep their values: other plug-ins of the host use them after a reset.
    for (QString *text :
         {&info.fs_extraction_source_path, &info.source_type_internal, &info.os_scheme_display,
          &info.os_scheme_internal, &info.os_version_full, &info.unread_text_7, &info.unread_text_8,
          &info.unread_text_10, &info.unread_text_11}) {
        if (!text->isEmpty())
            text->clear();
    }
    info.unread_list_9.clear();
    info.system_account_QList.clear();
}

void plugin_static_function::clear_variables_haldo_and_artifact_common_desktop_info(
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_desktop_info &info)
{
    for (QString *text :
         {&info.unread_text_1, &info.unread_text_2, &info.unread_text_4, &info.unread_text_5})
        text->clear();
    info.unread_flag_3 = false;
}

void plugin_static_function::clear_variables_haldo_and_artifact_common_general_info(
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info &info)
{
    // debug_encryption_status keeps its value: a reset must not make an enciphered log readable.
    info.unread_flag_1 = false;
    info.debug_mode_status = false;
    info.debug_print_on_terminal = false;
    info.debug_print_in_file = false;
    info.debug_file_path.clear();
}

// --- Debug log

void plugin_static_function::open_debug_file()
{
    if (debug_mode_status_bool && debug_print_in_file_bool)
        logging::open_log_file(debug_file_path_QString, &debug_file_regular_QFile);
}

void plugin_static_function::close_debug_file()
{
    logging::close_log_file(&debug_file_regular_QFile);
}

void plugin_static_function::app_debug(QString message, QString function_info)
{
    logging::log_settings settings;
    settings.is_on = debug_mode_status_bool;
    settings.to_terminal = debug_print_on_terminal_bool;
    settings.to_file = debug_print_in_file_bool;
    settings.is_enciphered = debug_encryption_status_bool;
    settings.engine_type = type_engine_int;
    logging::write_line(settings, message, function_info, &debug_file_regular_QFile);
}

QString plugin_static_function::encrypt_string(QString text, QString caller)
{
    Q_UNUSED(caller)
    return logging::enciphered(text);
}

// --- One statement against a database

bool plugin_static_function::execute_db_command_by_dbpath(QString command, QString db_path,
                                                          QString caller)
{
    return commands().execute_db_command_by_dbpath(command, db_path, caller);
}

bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbpath(QString command,
                                                                            QStringList values,
                                                                            QString db_path,
                                                                            QString caller)
{
    return commands().execute_db_command_with_addbindvalue_by_dbpath(command, values, db_path,
                                                                     caller);
}

bool plugin_static_function::execute_db_command_by_dbreference(QString command, QSqlDatabase &db,
                                                               QString caller)
{
    return commands().execute_db_command_by_dbreference(command, db, caller);
}

bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbreference(QString command,
                                                                                 QStringList values,
                                                                                 QSqlDatabase &db,
                                                                                 QString caller)
{
    return commands().execute_db_command_with_addbindvalue_by_dbreference(command, values, db,
                                                                          caller);
}

QStringList plugin_static_function::get_stringlist_from_db_by_dbreference(QString command,
                                                                          int column,
                                                                          QSqlDatabase &db,
                                                                          QString caller)
{
    return commands().get_stringlist_from_db_by_dbreference(command, column, db, caller);
}

QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbreference(
    QString command, QStringList values, int column, QSqlDatabase &db, QString caller)
{
    return commands().get_stringlist_from_db_with_addbindvalues_by_dbreference(command, values,
                                                                               column, db, caller);
}

QStringList plugin_static_function::get_stringlist_from_db_by_dbpath(QString command, int column,
                                                                     QString db_path,
                                                                     QString caller)
{
    return commands().get_stringlist_from_db_by_dbpath(command, column, db_path, caller);
}

QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbpath(
    QString command, QStringList values, int column, QString db_path, QString caller)
{
    return commands().get_stringlist_from_db_with_addbindvalues_by_dbpath(command, values, column,
                                                                          db_path, caller);
}

bool plugin_static_function::check_value_existence_in_db_by_dbreference(QString command, int column,
                                                                        QString value,
                                                                        QSqlDatabase db)
{
    return commands().check_value_existence_in_db_by_dbreference(command, column, value, db);
}

QStringList plugin_static_function::get_total_tables_list_by_dbpath(QString db_path, QString caller)
{
    return commands().get_total_tables_list_by_dbpath(db_path, caller);
}

// --- Dates and times

QString plugin_static_function::convert_apple_time_to_epoch(QString value)
{
    return text::convert_apple_time_to_epoch(value);
}

QString plugin_static_function::convert_google_time_to_epoch(QString value)
{
    return text::convert_google_time_to_epoch(value);
}

int plugin_static_function::convert_timezone_to_seconds(QString offset)
{
    return text::convert_timezone_to_seconds(offset);
}

QString plugin_static_function::convert_timestamp_to_human_readable_in_UTC(QString value)
{
    return text::convert_timestamp_to_human_readable_in_UTC(value);
}

QString plugin_static_function::get_human_readable_time(QString seconds)
{
    return text::get_human_readable_time(seconds);
}

QString plugin_static_function::convert_human_readable_to_epoch_1(QString value)
{
    return text::convert_human_readable_to_epoch_1(value);
}

QString plugin_static_function::convert_human_readable_to_epoch_2(QString value)
{
    return text::convert_human_readable_to_epoch_2(value);
}

QString plugin_static_function::convert_human_readable_to_epoch_3(QString value)
{
    return text::convert_human_readable_to_epoch_3(value);
}

QString plugin_static_function::convert_T_Z_time_to_epoch(QString value)
{
    return text::convert_T_Z_time_to_epoch(value);
}

QDateTime plugin_static_function::get_datetime_from_string_with_iso_date(QString value)
{
    return text::get_datetime_from_string_with_iso_date(value, log_lines);
}

struct_posix_timestamp plugin_static_function::get_posix_timestamp(QString path, QString prefix)
{
    return extraction::posix_times_of(path, prefix);
}

qint64 plugin_static_function::convert_nsdate_to_epoch(NSDate *date, NSObject *object)
{
    return platform::convert_nsdate_to_epoch(date, object);
}

struct_used_date plugin_static_function::extract_used_date(QString file_path)
{
    if (!used_dates)
        used_dates = std::make_unique<extraction::used_dates_reader>(
            source_root.isEmpty() ? QStringLiteral("/") : source_root, run_cancellation());
    return used_dates->of_file(file_path, log_lines);
}

// --- Value filters and text helpers

QString plugin_static_function::get_filtered_number_value(QString text)
{
    return text::get_filtered_number_value(text);
}

QString plugin_static_function::get_filtered_boolean_value(QString text)
{
    return text::get_filtered_boolean_value(text);
}

QString plugin_static_function::get_filtered_cfstring_value(QString text)
{
    return text::get_filtered_cfstring_value(text);
}

QString plugin_static_function::get_filtered_wherefrom_value(QString text)
{
    return text::get_filtered_wherefrom_value(text);
}

QString plugin_static_function::get_filtered_string_value(QString text)
{
    return text::get_filtered_string_value(text, run_cancellation());
}

QString plugin_static_function::get_filtered_date_value(QString text)
{
    return text::get_filtered_date_value(text, log_lines);
}

QString plugin_static_function::human_readable_size(QString text)
{
    return text::human_readable_size(text);
}

QString plugin_static_function::mining_size(QString path)
{
    const auto bytes = evidence::size_of(path, run_cancellation()).bytes;
    return bytes ? QString::number(*bytes) : QString();
}

QString plugin_static_function::mining_suffix(QString text)
{
    return text::mining_suffix(text);
}

QString plugin_static_function::convert_string_to_unicode(QString text)
{
    return text::convert_string_to_unicode(text, log_lines);
}

QString plugin_static_function::get_source_os_scan_version(QString text)
{
    return text::scan_version(text, source_os_version_full);
}

QStringList plugin_static_function::get_unmatched_varible_list_of_parentlist(QStringList parent,
                                                                             QStringList child)
{
    return text::texts_not_in(child, parent, run_cancellation());
}

// --- Files and folders

void plugin_static_function::remove_directory(QString path)
{
    evidence::remove_directory(path);
}

bool plugin_static_function::is_file_exist_in_dir(QString dir_path, QString file_name,
                                                  QString caller)
{
    Q_UNUSED(caller)
    return evidence::is_file_exist_in_dir(dir_path, file_name, run_cancellation());
}

QString plugin_static_function::get_available_file(QString file_path, QString dir_path,
                                                   QString caller)
{
    Q_UNUSED(caller)
    return evidence::get_available_file(file_path, dir_path, run_cancellation());
}

void plugin_static_function::copy_directory(QString source, QString destination)
{
    evidence::copy_directory(source, destination, run_cancellation(), log_lines);
}

// --- Paths between source and rows

QString plugin_static_function::get_relative_file_path(QString path, QString user,
                                                       QString source_type)
{
    return extraction::get_relative_file_path(path, user, source_type);
}

QPair<QString, QString> plugin_static_function::get_final_artifact_source_file(QString path,
                                                                               QString user,
                                                                               QString source_type)
{
    return extraction::get_final_artifact_source_file(path, user, source_type);
}

QString plugin_static_function::get_complete_file_path(QString path, QString user,
                                                       QString source_type)
{
    return extraction::get_complete_file_path(path, user, source_type);
}

QPair<QString, QString> plugin_static_function::extract_user_name_from_sourcefile(QString file_path,
                                                                                  QString fs_root)
{
    const extraction::source_user user =
        extraction::user_of_source_file(file_path, fs_root, source_users());
    return {user.name, user.domain_name};
}

// --- Single values of a property list

QString plugin_static_function::convert_cfstring_to_qstring(const __CFString *text)
{
    return platform::text_of_cfstring(text);
}

QString plugin_static_function::get_nsstring_values(void *key, void *dictionary)
{
    return platform::get_nsstring_values(key, dictionary, log_lines);
}

QString plugin_static_function::get_nsnumber_values(void *key, void *dictionary)
{
    return platform::get_nsnumber_values(key, dictionary, log_lines);
}

QString plugin_static_function::get_nsnumber_values_yes_no(void *key, void *dictionary)
{
    return platform::get_nsnumber_values_yes_no(key, dictionary, log_lines);
}

QString plugin_static_function::get_nsnumber_key_and_value_yes_no(void *key, void *dictionary,
                                                                  QString label)
{
    return platform::get_nsnumber_key_and_value_yes_no(key, dictionary, label);
}

QString plugin_static_function::get_nsstring_key_and_values(void *key, void *dictionary,
                                                            QString label)
{
    return platform::get_nsstring_key_and_values(key, dictionary, label);
}

QString plugin_static_function::get_nsnumber_key_and_values(void *key, void *dictionary,
                                                            QString label)
{
    return platform::get_nsnumber_key_and_values(key, dictionary, label);
}

QString plugin_static_function::get_nsarray_key_and_values(void *key, void *dictionary,
                                                           QString label)
{
    return platform::get_nsarray_key_and_values(key, dictionary, label);
}
