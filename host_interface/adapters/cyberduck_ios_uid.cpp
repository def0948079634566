#include "host_interface/adapters/cyberduck_ios_uid.h"

cyberduck_ios_uid::cyberduck_ios_uid(QWidget *parent)
    : QWidget(parent)
{
}

cyberduck_ios_uid::~cyberduck_ios_uid() = default;

void cyberduck_ios_uid::ios_uid_set_plugin_helper_obj(plugin_helper_functions *helper)
{
    settings_.plugin_helper_obj = helper;
}

void cyberduck_ios_uid::ios_uid_set_record_count(qint64 count)
{
    settings_.record_count = count;
}

void cyberduck_ios_uid::ios_uid_set_tab_processed_count(int count)
{
    settings_.tab_processed_count = count;
}

void cyberduck_ios_uid::ios_uid_set_desktop_info(
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_desktop_info info)
{
    Q_UNUSED(info)
}

void cyberduck_ios_uid::ios_uid_set_general_info(
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info info)
{
    Q_UNUSED(info)
}

void cyberduck_ios_uid::ios_uid_set_source_info(
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info info)
{
    settings_.set_source(info);
}

void cyberduck_ios_uid::ios_uid_set_essentials()
{
    settings_.cancel_extraction_flag = false;
}

void cyberduck_ios_uid::ios_uid_set_plugin_name(QString name)
{
    settings_.plugin_name = name.trimmed();
}

void cyberduck_ios_uid::ios_uid_set_destination_location(QString result_dir, QString temp_dir,
                                                         QString db_path)
{
    settings_.set_places(result_dir, temp_dir, db_path);
}

void cyberduck_ios_uid::ios_uid_set_essential_for_haldo_bench_extraction(QStringList tabs)
{
    settings_.essential_tab_list = tabs;
}

void cyberduck_ios_uid::ios_uid_set_engine_type(int type)
{
    settings_.engine_type = type;
}

void cyberduck_ios_uid::ios_uid_cancel_extraction()
{
    settings_.cancel_extraction_flag = true;
}

void cyberduck_ios_uid::ios_uid_set_source_count(int count)
{
    settings_.source_count = count;
}

void cyberduck_ios_uid::ios_uid_set_ios_backup_pointer(ios_uid_backup_parser *parser)
{
    ios_uid_backup_pointer = parser;
}

void cyberduck_ios_uid::ios_uid_find_artifacts_source()
{
    find_source_file();
}

void cyberduck_ios_uid::ios_uid_extract_artifacts()
{
    settings_.extraction_timer.start();
    extract_plugin_artifacts();
    Q_EMIT signal_extracted_records_of_plugin_ios_uid(settings_.record_count);
}

void cyberduck_ios_uid::find_source_file() {}

void cyberduck_ios_uid::extract_plugin_artifacts() {}
