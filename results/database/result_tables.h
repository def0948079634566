// The tables of the result database. The host reads them: names, order and types are its interface.
#pragma once

#include <QLatin1String>
#include <QStringList>

namespace results {

// Tabs have the names of their tables.
constexpr char bookmarks_table[] = "bookmarks";
constexpr char history_table[] = "history";
constexpr char transfers_table[] = "transfers";
constexpr char preferences_table[] = "preferences";
constexpr char export_table[] = "exportfilelist"; // filled by the host

// The tabs in the order in which they are filled.
constexpr const char *tab_names[] = {bookmarks_table, history_table, transfers_table,
                                     preferences_table};

// The tabs, then the table that the host fills.
[[nodiscard]] inline QStringList table_names()
{
    QStringList names;
    for (const char *name : tab_names)
        names.append(QLatin1String(name));
    return names << QLatin1String(export_table);
}

// Of the host's engines, 0, 1 and 2 extract and clear tables.
constexpr bool is_extracting_engine(int engine_type)
{
    constexpr unsigned last_extracting_engine = 2;
    return static_cast<unsigned>(engine_type) <= last_extracting_engine;
}

struct result_table
{
    const char *name;
    const char *statement;
};

// In the order in which they are made.
constexpr result_table result_tables[] = {
    {bookmarks_table,
     "create table IF NOT EXISTS bookmarks(bookmark integer,INT INTEGER PRIMARY KEY,"
     "system_user varchar(100),nickname varchar(100),comment varchar(100),"
     "download_folder varchar(100),hostname varchar(100),remote_path varchar(100),"
     "port varchar(100),protocol varchar(100),uuid varchar(100),"
     "upload_folder varchar(100),username varchar(100),access_timestamp INTEGER,"
     "notes_icon VARCHAR(1024),tags_icon VARCHAR(1024),haldo_tag_value varchar(100),"
     "os_scheme_display VARCHAR(100),source_count_name varchar(500),"
     "source_file varchar(500),artifacts_relation_source_file varchar(500),"
     "notes varchar(500))"},
    {history_table,
     "create table IF NOT EXISTS history(bookmark integer,INT INTEGER PRIMARY KEY,"
     "system_user varchar(100),comment varchar(100),hostname varchar(100),"
     "port varchar(100),protocol varchar(100),uuid varchar(100),username varchar(100),"
     "access_timestamp INTEGER,notes_icon VARCHAR(1024),tags_icon VARCHAR(1024),"
     "haldo_tag_value varchar(100),os_scheme_display VARCHAR(100),"
     "source_count_name varchar(500),source_file varchar(500),"
     "artifacts_relation_source_file varchar(500),notes varchar(500))"},
    {transfers_table,
     "create table IF NOT EXISTS transfers(bookmark integer,INT INTEGER PRIMARY KEY,"
     "system_user varchar(100),domain_user VARCHAR(100),file_name varchar(100),"
     "suffix varchar(1000),file_type varchar(100),file_exist INTEGER,file_size INTEGER,"
     "username varchar(100),uuid varchar(100),hostname varchar(100),"
     "protocol varchar(100),port varchar(100),upload_path varchar(100),"
     "download_path varchar(100),local_path varchar(100),remote_mask varchar(100),"
     "remote_path varchar(100),preview_file_path varchar(1024),"
     "export_file_paths varchar(1024),transfer_type varchar(100),"
     "transfer_uuid varchar(100),transfer_size INTEGER,duplicate varchar(100),"
     "comment varchar(100),remote_modification_date INTEGER,transfer_timestamp INTEGER,"
     "access_timestamp INTEGER,attr_file_type varchar(100),content_type varchar(100),"
     "fs_name varchar(100),fs_node_count varchar(100),wherefrom varchar(100),"
     "latitude varchar(100),longitude varchar(100),altitude varchar(100),"
     "torrent_file_list varchar(5000),date_added INTEGER,"
     "content_modification_date INTEGER,fs_creation_date INTEGER,"
     "fs_content_change_date INTEGER,content_creation_date INTEGER,"
     "last_used_date INTEGER,first_date INTEGER,last_date INTEGER,used_dates INTEGER,"
     "bookmarked_extended_attributes varchar(1000),bookmarked_exif_data varchar(1000),"
     "extended_attributes_key_value varchar(200),"
     "extended_attributes_value_for_search varchar(200),LINKFILENAME VARCHAR(1024),"
     "notes_icon VARCHAR(1024),tags_icon VARCHAR(1024),haldo_tag_value varchar(100),"
     "os_scheme_display VARCHAR(100),source_count_name varchar(500),"
     "source_file varchar(500),artifacts_relation_source_file varchar(500),"
     "notes varchar(500))"},
    {export_table, "CREATE TABLE IF NOT EXISTS exportfilelist(INT INTEGER PRIMARY KEY,"
                   "record VARCHAR(150),table_name VARCHAR(1000),filepath VARCHAR(1000),"
                   "exp_newpath VARCHAR(1000),exp_relativepath VARCHAR(1000),exp_size INTEGER,"
                   "exp_hashmd5 VARCHAR(1000),exp_hashsha1 VARCHAR(1000),"
                   "exp_LINKFILENAME varchar(500),exp_time INTEGER)"},
    {preferences_table,
     "CREATE TABLE IF NOT EXISTS preferences(bookmark INTEGER,INT INTEGER PRIMARY KEY,"
     "system_user VARCHAR(100),key VARCHAR(200),value VARCHAR(200),"
     "notes_icon VARCHAR(1024),tags_icon VARCHAR(1024),haldo_tag_value varchar(100),"
     "os_scheme_display VARCHAR(100),source_count_name varchar(500),"
     "source_file VARCHAR(200),artifacts_relation_source_file varchar(500),"
     "notes VARCHAR(500))"},
};

} // namespace results
