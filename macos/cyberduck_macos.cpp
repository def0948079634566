#include "cyberduck_macos.h"

#include "support/plugin_static_function.h"

namespace {

constexpr int most_known_copies = 16384; // about 1 KB each

} // namespace

cyberduck_macos::cyberduck_macos(QWidget *parent)
    : QWidget(parent)
    , extraction_timer(std::make_unique<QElapsedTimer>())
    , known_copies_(most_known_copies)
{
}

cyberduck_macos::~cyberduck_macos() = default;

void cyberduck_macos::macos_set_plugin_helper_obj(plugin_helper_functions *helper)
{
    plugin_helper_obj = helper;
}

void cyberduck_macos::macos_set_record_count(qint64 count)
{
    record_count = count;
}

void cyberduck_macos::macos_set_tab_processed_count(int count)
{
    tab_processed_count = count;
}

void cyberduck_macos::macos_set_desktop_info(
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_desktop_info info)
{
    Q_UNUSED(info)
}

void cyberduck_macos::macos_set_general_info(
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info info)
{
    Q_UNUSED(info)
}

void cyberduck_macos::macos_set_source_info(
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info info)
{
    fs_extraction_source_path = info.fs_extraction_source_path;
    source_type_internal = info.source_type_internal;
    for (const auto &account : qAsConst(info.system_account_QList))
        system_user_list.append(account.system_user);
    system_user_list.removeDuplicates();
    system_user_list.removeAll(QString());
    os_scheme_display = info.os_scheme_display;
    plugin_static_function::set_metadata_root(fs_extraction_source_path);
}

void cyberduck_macos::macos_set_essentials()
{
    cancel_extraction_flag = false;
}

void cyberduck_macos::macos_set_plugin_name(QString name)
{
    plugin_name = name.trimmed();
}

void cyberduck_macos::macos_set_destination_location(QString result_dir, QString temp_dir,
                                                     QString db_path)
{
    result_dir_path = result_dir;
    temp_dir_path = temp_dir;
    destination_db_path = db_path;
}

void cyberduck_macos::macos_set_extended_attributes_list(QStringList attributes)
{
    extended_attributes_list = attributes;
    filter_extended_attribute_list();
}

void cyberduck_macos::macos_set_essential_for_haldo_bench_extraction(QStringList tabs)
{
    essential_tab_list = tabs;
}

void cyberduck_macos::macos_set_engine_type(int type)
{
    engine_type = type;
}

void cyberduck_macos::macos_cancel_extraction()
{
    cancel_extraction_flag = true;
}

void cyberduck_macos::macos_set_source_count(int count)
{
    source_count = count;
}

void cyberduck_macos::macos_find_artifacts_source()
{
    find_source_file();
}

void cyberduck_macos::macos_extract_artifacts()
{
    extraction_timer->start();
    extract_plugin_artifacts();
    Q_EMIT signal_extracted_records_of_plugin_macos(record_count);
}

void cyberduck_macos::count_row()
{
    ++record_count;
    if (!extraction_timer->isValid())
        extraction_timer->start();
    if (extraction_timer->elapsed() <= signal_interval_ms)
        return;
    Q_EMIT signal_extracted_records_of_plugin_macos(record_count);
    extraction_timer->restart();
}

macos::run_environment cyberduck_macos::environment()
{
    return {destination_db_path,
            fs_extraction_source_path,
            source_type_internal,
            os_scheme_display,
            &cancel_extraction_flag,
            [this] { count_row(); },
            [this](qint64 rows) { record_count -= rows; }};
}
