// Where the result database lies, its tables, and emptying them.
#include "host_interface/adapters/cyberduck_ios_uid.h"
#include "host_interface/adapters/cyberduck_macos.h"
#include "host_interface/adapters/cyberduck_winos.h"
#include "host_interface/frame/cyberduck.h"
#include "host_interface/library/plugin_helper_functions.h"
#include "host_interface/library/plugin_static_function.h"
#include "results/database/database_set_up.h"

namespace {

constexpr char location_signature[] = "void cyberduck::set_destination_location(QString)";
constexpr char database_signature[] = "void cyberduck::create_destination_database()";

void log_line(const char *message, const char *signature)
{
    plugin_static_function::run_log().write(message, QString(), signature);
}

} // namespace

void cyberduck::set_destination_location(QString dir)
{
    log_line("[set_destination_location] starts", location_signature);
    const results::result_places places = results::make_result_places(dir, pub_get_artifact_name());
    result_dir_path = places.folder;
    temp_dir_path = places.temporary_folder;
    destination_db_path = places.database;
    plugin_helper_obj->set_adhoc_parent_path(temp_dir_path);
    macos_adapter->macos_set_destination_location(result_dir_path, temp_dir_path,
                                                  destination_db_path);
    ios_uid_adapter->ios_uid_set_destination_location(result_dir_path, temp_dir_path,
                                                      destination_db_path);
    winos_adapter->winos_set_destination_location(result_dir_path, temp_dir_path,
                                                  destination_db_path);
    log_line("[set_destination_location] ends", location_signature);
}

void cyberduck::create_destination_database()
{
    log_line("[create_destination_database] starts", database_signature);
    create_db_tables();
    log_line("[create_destination_database] ends", database_signature);
}

void cyberduck::create_db_tables()
{
    results::create_tables(destination_db_path, plugin_static_function::database_context());
}

void cyberduck::clear_db_tables()
{
    results::clear_tables(destination_db_path, engine_type, essential_tab_list,
                          plugin_static_function::database_context());
}
