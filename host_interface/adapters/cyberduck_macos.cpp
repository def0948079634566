#include "host_interface/adapters/cyberduck_macos.h"

#include "evidence/folders/source_boundary.h"
#include "extraction/copies/attribute_selection.h"
#include "extraction/copies/local_copies.h"
#include "extraction/preferences.h"
#include "host_interface/library/plugin_static_function.h"

cyberduck_macos::cyberduck_macos(QWidget *parent)
    : QWidget(parent)
{
}

cyberduck_macos::~cyberduck_macos() = default;

void cyberduck_macos::macos_set_plugin_helper_obj(plugin_helper_functions *helper)
{
    settings_.plugin_helper_obj = helper;
}

void cyberduck_macos::macos_set_record_count(qint64 count)
{
    settings_.record_count = count;
}

void cyberduck_macos::macos_set_tab_processed_count(int count)
{
    settings_.tab_processed_count = count;
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
    settings_.set_source(info);
    settings_.add_users(info);
}

void cyberduck_macos::macos_set_essentials()
{
    settings_.cancel_extraction_flag = false;
}

void cyberduck_macos::macos_set_plugin_name(QString name)
{
    settings_.plugin_name = name.trimmed();
}

void cyberduck_macos::macos_set_destination_location(QString result_dir, QString temp_dir,
                                                     QString db_path)
{
    settings_.set_places(result_dir, temp_dir, db_path);
}

void cyberduck_macos::macos_set_extended_attributes_list(QStringList attributes)
{
    extended_attributes_list = attributes;
    filter_extended_attribute_list();
}

void cyberduck_macos::macos_set_essential_for_haldo_bench_extraction(QStringList tabs)
{
    settings_.essential_tab_list = tabs;
}

void cyberduck_macos::macos_set_engine_type(int type)
{
    settings_.engine_type = type;
}

void cyberduck_macos::macos_cancel_extraction()
{
    settings_.cancel_extraction_flag = true;
}

void cyberduck_macos::macos_set_source_count(int count)
{
    settings_.source_count = count;
}

void cyberduck_macos::macos_find_artifacts_source()
{
    find_source_file();
}

void cyberduck_macos::macos_extract_artifacts()
{
    settings_.extraction_timer.start();
    extract_plugin_artifacts();
    Q_EMIT signal_extracted_records_of_plugin_macos(settings_.record_count);
}

void cyberduck_macos::find_source_file()
{
    found_ = extraction::find_client_data(
        settings_.fs_extraction_source_path, settings_.system_user_list,
        plugin_static_function::run_cancellation(), plugin_static_function::run_log());
}

void cyberduck_macos::filter_extended_attribute_list()
{
    extended_attributes_list = extraction::without_own_attributes(
        extended_attributes_list, plugin_static_function::run_cancellation());
}

void cyberduck_macos::extract_plugin_artifacts()
{
    extraction::extract_tabs({settings_.engine_type, settings_.essential_tab_list}, found_,
                             context(), this);
}

void cyberduck_macos::xcode_extract_bookmarks()
{
    extraction::extract_bookmarks(found_.bookmark_folders, context());
}

void cyberduck_macos::xcode_extract_history()
{
    extraction::extract_history(found_.history_folders, context());
}

void cyberduck_macos::xcode_extract_transfers()
{
    extraction::extract_transfers(found_.transfer_folders, context());
}

void cyberduck_macos::xcode_extract_preferences(QString plist_path, QString user_name)
{
    extraction::extract_preferences(plist_path, user_name, context());
}

void cyberduck_macos::insert_values_fun(QString label, QString value, QSqlDatabase &database,
                                        QString plist_path, QString user_name)
{
    extraction::insert_preference({plist_path, user_name, label, value}, database, context());
}

struct_GLOBAL_ARTIFACT_cfstring_attributes
cyberduck_macos::extract_cfstring_attributes(QString file_path)
{
    const extraction::extraction_context around = context();
    return attribute_record_of(extraction::local_copies(around).attributes_of_file(file_path));
}

QPair<QString, QString> cyberduck_macos::extract_longi_lati_attributes(QString file_path)
{
    const extraction::extraction_context around = context();
    const extraction::position_texts position =
        extraction::local_copies(around).position_of_file(file_path);
    return {position.latitude, position.longitude};
}

QPair<QString, QString> cyberduck_macos::get_extended_attributes(QStringList file_paths,
                                                                 QList<QStringList> attribute_lists)
{
    const extraction::extraction_context around = context();
    const extraction::selected_texts texts =
        extraction::local_copies(around).selected_of_files(file_paths, attribute_lists);
    return {texts.for_search, texts.document};
}

void cyberduck_macos::row_added()
{
    ++settings_.record_count;
    if (!settings_.extraction_timer.isValid())
        settings_.extraction_timer.start();
    if (settings_.extraction_timer.elapsed() <= signal_interval_ms_)
        return;
    Q_EMIT signal_extracted_records_of_plugin_macos(settings_.record_count);
    settings_.extraction_timer.restart();
}

void cyberduck_macos::rows_lost(qint64 rows)
{
    settings_.record_count -= rows;
}

void cyberduck_macos::extractor_ended()
{
    Q_EMIT signal_extracted_records_of_plugin_macos(settings_.record_count);
}

void cyberduck_macos::tab_ended()
{
    settings_.tab_processed_count += 1;
    Q_EMIT signal_total_tabs_processed_macos(settings_.tab_processed_count);
}

extraction::extraction_context cyberduck_macos::context()
{
    // The library's flag is set first: its loops may have ended early by then.
    const run::cancellation cancelled(settings_.cancel_extraction_flag,
                                      plugin_static_function::bool_cancel_extraction);
    const results::database_context database = plugin_static_function::database_context();
    return {{settings_.fs_extraction_source_path, settings_.source_type_internal,
             settings_.os_scheme_display, plugin_static_function::get_source_count_name(),
             plugin_static_function::source_users()},
            settings_.destination_db_path,
            extended_attributes_list,
            plugin_static_function::run_log(),
            cancelled,
            database.wait,
            *this};
}
