// What the host says of the run and its source; one process examines one source at a time.
#include "plugin_static_function.h"

#include "platform/spotlight_item.h"

int plugin_static_function::type_engine_int = -1;
int plugin_static_function::source_count_int = -1;
std::atomic<bool> plugin_static_function::bool_cancel_extraction{false};
bool plugin_static_function::database_wait_spent = false;
QString plugin_static_function::source_os_version_full;
QList<struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_system_account>
    plugin_static_function::system_account_QList;

namespace {

// Made when first asked for: most runs of most hosts never look at a file's metadata.
std::unique_ptr<platform::spotlight_catalog> current_catalog;
QString current_source_root;

} // namespace

plugin_static_function::plugin_static_function(QWidget *parent)
    : QWidget(parent)
{
}

plugin_static_function::~plugin_static_function() = default;

void plugin_static_function::set_essentials()
{
    debug_mode_status_bool = false;
    debug_print_in_file_bool = false;
    debug_print_on_terminal_bool = false;
    debug_file_path_QString.clear();
    type_engine_int = -1;
    source_count_int = -1;
    bool_cancel_extraction = false;
    database_wait_spent = false;
    system_account_QList.clear();
}

void plugin_static_function::set_engine_type(int type)
{
    type_engine_int = type;
}

void plugin_static_function::set_source_info(
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info info)
{
    source_os_version_full = info.os_version_full;
    if (system_account_QList != info.system_account_QList)
        system_account_QList = info.system_account_QList;
    set_metadata_root(info.fs_extraction_source_path);
}

void plugin_static_function::set_metadata_root(const QString &source_root)
{
    current_catalog.reset();
    current_source_root = source_root;
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

platform::spotlight_catalog *plugin_static_function::metadata_catalog()
{
    if (!current_catalog)
        current_catalog = platform::make_spotlight_catalog(
            current_source_root.isEmpty() ? QStringLiteral("/") : current_source_root,
            [] { return bool_cancel_extraction.load(); });
    return current_catalog.get();
}

void plugin_static_function::release_metadata_catalog()
{
    current_catalog.reset();
}

void plugin_static_function::clear_variables_haldo_and_artifact_common_source_info(
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info &info)
{
    // Members 12 and 13 stay: other plug-ins of the host count on them after a reset.
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
    // debug_encryption_status stays: an enciphered log must not turn readable by a reset.
    info.unread_flag_1 = false;
    info.debug_mode_status = false;
    info.debug_print_on_terminal = false;
    info.debug_print_in_file = false;
    info.debug_file_path.clear();
}
