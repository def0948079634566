// One row per saved bookmark of every user.
#pragma once

#include "extraction/lists/connection_fields.h"
#include "extraction/lists/extractor.h"

namespace extraction {

// All texts; null where the list has no such text.
struct bookmark_row : row_origin, connection_fields
{
    QString nickname;
    QString remote_path;
    QString download_folder; // as a row shows it
    QString upload_folder;   // as a row shows it
};

// In the order of the statement's placeholders.
constexpr results::column_field<bookmark_row> bookmark_columns[] = {
    {"bookmark", &bookmark_row::bookmark},
    {"system_user", &bookmark_row::system_user},
    {"nickname", &bookmark_row::nickname},
    {"comment", &bookmark_row::comment},
    {"download_folder", &bookmark_row::download_folder},
    {"hostname", &bookmark_row::hostname},
    {"remote_path", &bookmark_row::remote_path},
    {"port", &bookmark_row::port},
    {"protocol", &bookmark_row::protocol},
    {"uuid", &bookmark_row::uuid},
    {"upload_folder", &bookmark_row::upload_folder},
    {"username", &bookmark_row::username},
    {"access_timestamp", &bookmark_row::access_timestamp},
    {"source_file", &bookmark_row::source_file},
    {"artifacts_relation_source_file", &bookmark_row::artifacts_relation_source_file},
    {"source_count_name", &bookmark_row::source_count_name},
    {"os_scheme_display", &bookmark_row::os_scheme_display}};

// The row of one list, without its origin.
[[nodiscard]] bookmark_row read_bookmark(const loaded_list &list, const path_mapper &paths);

class bookmarks final : public extractor
{
public:
    static const extractor_profile own_profile;

    [[nodiscard]] const extractor_profile &profile() const override;
    [[nodiscard]] step read(const loaded_list &list, list_run *run) override;
};

} // namespace extraction
