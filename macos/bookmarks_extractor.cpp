// One row per saved bookmark of every user.
#include "bookmarks_extractor.h"

#include "cyberduck_macos.h"

namespace macos {

const extractor_profile bookmarks_profile = {
    {
        "void cyberduck_macos::xcode_extract_bookmarks()",
        "[xcode_extract_bookmarks] starts",
        "[xcode_extract_bookmarks] destination_db  open ------FAILED------",
        "[xcode_extract_bookmarks] end with failure",
        "[xcode_extract_bookmarks] target_file open ------FAILED------",
        "[xcode_extract_bookmarks] m_plist open ------FAILED------",
        "[xcode_extract_bookmarks] outside the source ------FAILED------",
        "[xcode_extract_bookmarks] text too long, cut ------FAILED------",
        "[xcode_extract_bookmarks] list too large, values left out ------FAILED------",
        "[xcode_extract_bookmarks] folder open ------FAILED------",
        "[extract_bookmarks] insert in bookmarks --------FAILED-------",
        false,
        "[extract_bookmarks]",
        "",
        "[xcode_extract_bookmarks] commit ------FAILED------",
        "[xcode_extract_bookmarks] end",
    },
    ".duck",
    "insert into bookmarks (bookmark,system_user, nickname,comment,download_folder, "
    "hostname,remote_path,port,protocol,uuid,upload_folder, "
    "username,access_timestamp,source_file,artifacts_relation_source_file,source_count_name,"
    "os_scheme_display)values (?,?,?,?,?, ?,?,?,?,?, ?,?,?,?,?, ?,?)",
};

namespace {

const key_field<bookmark_row> text_keys[] = {
    {QStringLiteral("Path"), &bookmark_row::remote_path},
    {QStringLiteral("Nickname"), &bookmark_row::nickname},
};

} // namespace

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

} // namespace macos

void cyberduck_macos::xcode_extract_bookmarks()
{
    macos::extractor_run run(macos::bookmarks_profile, environment());
    if (!run.open())
        return;
    run.read_lists(bookmarks_dir_list, [&run](const macos::loaded_list &list) {
        macos::bookmark_row row = macos::read_bookmark(list, run.paths());
        run.set_origin(list, &row);
        run.insert(macos::bookmark_columns, row);
        return macos::step::done;
    });
}
