#include "host_interface/frame/cyberduck.h"

#include "host_interface/adapters/cyberduck_macos.h"
#include "host_interface/adapters/cyberduck_ios_uid.h"
#include "host_interface/adapters/cyberduck_winos.h"
#include "host_interface/library/plugin_helper_functions.h"
#include "host_interface/library/plugin_static_function.h"
#include "host_interface/frame/ui_cyberduck.h"
#include "results/database/database_set_up.h"

namespace {

constexpr char find_signature[] = "virtual void cyberduck::pub_find_source_file()";
constexpr char extract_signature[] = "virtual void cyberduck::pub_extract_artifacts()";

} // namespace

cyberduck::cyberduck(QWidget *parent)
    : QFrame(parent)
    , ui(new Ui_cyberduck)
    , process_finished_flag(false)
    , records_total(0)
    , tabs_total(0)
    , engine_type(-1)
    , cancel_extraction_flag(false)
    , plugin_helper_obj(nullptr)
    , macos_adapter(nullptr)
    , ios_uid_adapter(nullptr)
    , winos_adapter(nullptr)
{
    ui->setupUi(this);

    macos_adapter = new cyberduck_macos(this);
    connect(macos_adapter, SIGNAL(signal_extracted_records_of_plugin_macos(qint64)), this,
            SLOT(slot_extracted_records_of_plugin(qint64)));
    connect(macos_adapter, SIGNAL(signal_total_tabs_processed_macos(int)), this,
            SLOT(slot_total_tabs_processed(int)));

    ios_uid_adapter = new cyberduck_ios_uid(this);
    connect(ios_uid_adapter, SIGNAL(signal_extracted_records_of_plugin_ios_uid(qint64)), this,
            SLOT(slot_extracted_records_of_plugin(qint64)));
    connect(ios_uid_adapter, SIGNAL(signal_total_tabs_processed_ios_uid(int)), this,
            SLOT(slot_total_tabs_processed(int)));

    winos_adapter = new cyberduck_winos(this);
    connect(winos_adapter, SIGNAL(signal_extracted_records_of_plugin_winos(qint64)), this,
            SLOT(slot_extracted_records_of_plugin(qint64)));
    connect(winos_adapter, SIGNAL(signal_total_tabs_processed_winos(int)), this,
            SLOT(slot_total_tabs_processed(int)));

    plugin_helper_obj = new plugin_helper_functions(this);
}

cyberduck::~cyberduck()
{
    results::remove_left_connections(plugin_static_function::database_context().left_connections);
    delete ui;
}

void cyberduck::pub_set_engine_type(int t)
{
    engine_type = t;
    plugin_static_function::set_engine_type(t);
    macos_adapter->macos_set_engine_type(t);
    ios_uid_adapter->ios_uid_set_engine_type(t);
    winos_adapter->winos_set_engine_type(t);
    macos_adapter->macos_set_plugin_name(pub_get_artifact_name());
    ios_uid_adapter->ios_uid_set_plugin_name(pub_get_artifact_name());
    winos_adapter->winos_set_plugin_name(pub_get_artifact_name());
}

QString cyberduck::pub_get_artifact_name()
{
    return QObject::tr("Cyberduck");
}

void cyberduck::pub_set_essentials()
{
    set_essentials();
}

void cyberduck::set_essentials()
{
    cancel_extraction_flag = false;
    records_total = 0;
    tabs_total = 0;
    plugin_static_function::set_essentials();
    plugin_helper_obj->set_essentials();
    macos_adapter->macos_set_essentials();
    ios_uid_adapter->ios_uid_set_essentials();
    winos_adapter->winos_set_essentials();
}

void cyberduck::pub_set_source_count(int n)
{
    plugin_static_function::set_source_count(n);
    macos_adapter->macos_set_source_count(n);
    ios_uid_adapter->ios_uid_set_source_count(n);
    winos_adapter->winos_set_source_count(n);
}

void cyberduck::pub_set_ios_uid_backup_pointer(ios_uid_backup_parser *p)
{
    ios_uid_adapter->ios_uid_set_ios_backup_pointer(p);
}

void cyberduck::pub_set_desktop_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_desktop_info d)
{
    plugin_static_function::set_desktop_info(d);
    macos_adapter->macos_set_desktop_info(d);
    ios_uid_adapter->ios_uid_set_desktop_info(d);
    winos_adapter->winos_set_desktop_info(d);
}

void cyberduck::pub_set_general_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info g)
{
    plugin_static_function::set_general_info(g);
    macos_adapter->macos_set_general_info(g);
    ios_uid_adapter->ios_uid_set_general_info(g);
    winos_adapter->winos_set_general_info(g);
}

void cyberduck::pub_set_source_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info s)
{
    os_scheme_internal = s.os_scheme_internal;
    plugin_static_function::set_source_info(s);
    macos_adapter->macos_set_source_info(s);
    ios_uid_adapter->ios_uid_set_source_info(s);
    winos_adapter->winos_set_source_info(s);
}

void cyberduck::pub_set_essential_for_haldo_bench_extraction(QStringList tabs, QStringList other)
{
    Q_UNUSED(other)
    essential_tab_list = tabs;
    macos_adapter->macos_set_essential_for_haldo_bench_extraction(tabs);
    ios_uid_adapter->ios_uid_set_essential_for_haldo_bench_extraction(tabs);
    winos_adapter->winos_set_essential_for_haldo_bench_extraction(tabs);
}

void cyberduck::pub_set_result_directory(QString dir)
{
    set_destination_location(dir);
}

void cyberduck::pub_create_db_tables()
{
    create_destination_database();
}

void cyberduck::pub_set_clear_db(bool clear)
{
    if (clear)
        clear_db_tables();
}

void cyberduck::pub_cancel_extraction()
{
    cancel_extraction_flag = true;
    plugin_static_function::set_cancel_extraction(true);
    plugin_helper_obj->set_cancel_extraction(cancel_extraction_flag);
    macos_adapter->macos_cancel_extraction();
    ios_uid_adapter->ios_uid_cancel_extraction();
    winos_adapter->winos_cancel_extraction();
}

cyberduck::scheme cyberduck::source_scheme(const char *function)
{
    if (os_scheme_internal == QLatin1String("macOS"))
        return scheme::macos;
    if (os_scheme_internal == QLatin1String("iOS_UID"))
        return scheme::ios_uid;
    if (os_scheme_internal == QLatin1String("winOS"))
        return scheme::winos;
    plugin_static_function::app_debug(
        QStringLiteral("------FAILED------- supported os scheme internal not matched, received os "
                       "scheme internal =  ") +
            os_scheme_internal + QStringLiteral(", plugin name is ") + pub_get_artifact_name(),
        QLatin1String(function));
    return scheme::unknown;
}

void cyberduck::pub_find_source_file()
{
    switch (source_scheme(find_signature)) {
    case scheme::macos:
        macos_adapter->macos_find_artifacts_source();
        break;
    case scheme::ios_uid:
        ios_uid_adapter->ios_uid_find_artifacts_source();
        break;
    case scheme::winos:
        winos_adapter->winos_find_artifacts_source();
        break;
    case scheme::unknown:
        break;
    }
}

void cyberduck::pub_set_extended_attributes_list(QStringList attrs)
{
    macos_adapter->macos_set_extended_attributes_list(attrs);
}

void cyberduck::hand_over_totals()
{
    macos_adapter->macos_set_plugin_helper_obj(plugin_helper_obj);
    macos_adapter->macos_set_record_count(records_total);
    macos_adapter->macos_set_tab_processed_count(tabs_total);
    ios_uid_adapter->ios_uid_set_plugin_helper_obj(plugin_helper_obj);
    ios_uid_adapter->ios_uid_set_record_count(records_total);
    ios_uid_adapter->ios_uid_set_tab_processed_count(tabs_total);
    winos_adapter->winos_set_plugin_helper_obj(plugin_helper_obj);
    winos_adapter->winos_set_record_count(records_total);
    winos_adapter->winos_set_tab_processed_count(tabs_total);
}

void cyberduck::pub_extract_artifacts()
{
    plugin_static_function::app_debug(QStringLiteral("[pub_extract_artifacts] - START"),
                                      QLatin1String(extract_signature));
    Q_EMIT signal_extracted_records_of_plugin_overall(0);
    hand_over_totals();

    const scheme selected = source_scheme(extract_signature);
    if (selected != scheme::unknown && cancel_extraction_flag)
        return;
    switch (selected) {
    case scheme::macos:
        macos_adapter->macos_extract_artifacts();
        break;
    case scheme::ios_uid:
        ios_uid_adapter->ios_uid_extract_artifacts();
        break;
    case scheme::winos:
        winos_adapter->winos_extract_artifacts();
        break;
    case scheme::unknown:
        break;
    }

    Q_EMIT signal_extracted_records_of_plugin_overall(records_total);
    plugin_static_function::app_debug(QStringLiteral("[pub_extract_artifacts] - END"),
                                      QLatin1String(extract_signature));
}

void cyberduck::pub_generate_chat_html_pages() {}

void cyberduck::pub_remove_temporary_asthetics()
{
    plugin_static_function::remove_directory(temp_dir_path);
    plugin_static_function::close_debug_file();
}

void cyberduck::slot_extracted_records_of_plugin(qint64 n)
{
    records_total = n;
    Q_EMIT signal_extracted_records_of_plugin_overall(n);
}

void cyberduck::slot_total_tabs_processed(int n)
{
    tabs_total = n;
    Q_EMIT signal_tab_processed_of_plugin_overall(n);
}

void cyberduck::slot_m_process_finished(int status)
{
    Q_UNUSED(status)
    process_finished_flag = true;
}
