#include "extraction/bookmarks.h"

#include "extraction/lists/list_run.h"
#include "extraction/lists/list_values.h"

namespace extraction {

namespace {

constexpr extractor_words make_words()
{
    extractor_words words;
    words.starts = "[xcode_extract_bookmarks] starts";
    words.database_failed = "[xcode_extract_bookmarks] destination_db  open ------FAILED------";
    words.failed_end = "[xcode_extract_bookmarks] end with failure";
    words.path_failed = "[xcode_extract_bookmarks] target_file open ------FAILED------%1";
    words.list_failed = "[xcode_extract_bookmarks] m_plist open ------FAILED------%1";
    words.outside_source = "[xcode_extract_bookmarks] outside the source ------FAILED------%1";
    words.text_cut = "[xcode_extract_bookmarks] text too long, cut ------FAILED------%1";
    words.values_left_out =
        "[xcode_extract_bookmarks] list too large, values left out ------FAILED------%1";
    words.folder_failed = "[xcode_extract_bookmarks] folder open ------FAILED------%1";
    words.ends = "[xcode_extract_bookmarks] end";
    words.rows.signature = "void cyberduck_macos::xcode_extract_bookmarks()";
    words.rows.insert_signature = words.rows.signature;
    words.rows.insert_failed = "[extract_bookmarks] insert in bookmarks --------FAILED-------";
    words.rows.insert_error = "[extract_bookmarks]%1";
    words.rows.insert_query = "%1";
    words.rows.commit_failed = "[xcode_extract_bookmarks] commit ------FAILED------%1";
    return words;
}

const key_field<bookmark_row> text_keys[] = {
    {QStringLiteral("Path"), &bookmark_row::remote_path},
    {QStringLiteral("Nickname"), &bookmark_row::nickname},
};

} // namespace

const extractor_profile bookmarks::own_profile = {
    make_words(),
    ".duck",
    "insert into bookmarks (bookmark,system_user, nickname,comment,download_folder, "
    "hostname,remote_path,port,protocol,uuid,upload_folder, "
    "username,access_timestamp,source_file,artifacts_relation_source_file,source_count_name,"
    "os_scheme_display)values (?,?,?,?,?, ?,?,?,?,?, ?,?,?,?,?, ?,?)",
};

bookmark_row read_bookmark(const loaded_list &list, const path_mapper &paths)
{
    bookmark_row row;
    row.upload_folder = paths.shown_folder(
        recorded_path(list.root, QStringLiteral("Upload Folder Dictionary")), list.user);
    row.download_folder = paths.shown_folder(
        recorded_path(list.root, QStringLiteral("Download Folder Dictionary")), list.user);
    read_texts(list.root, text_keys, &row);
    read_connection(list.root, &row);
    return row;
}

const extractor_profile &bookmarks::profile() const
{
    return own_profile;
}

step bookmarks::read(const loaded_list &list, list_run *run)
{
    bookmark_row row = read_bookmark(list, run->paths());
    static_cast<row_origin &>(row) = list.origin;
    run->rows().insert(bookmark_columns, row);
    return step::done;
}

} // namespace extraction
