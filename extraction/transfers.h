// One row per item of every queued or finished transfer of every user, with the metadata of its
// local copy.
#pragma once

#include "extraction/lists/connection_fields.h"
#include "extraction/lists/extractor.h"
#include "extraction/copies/local_copies.h"

namespace extraction {

// The values that all items of a transfer share. All texts; null where the list has none.
struct transfer_fields
{
    QString upload_path;        // as a row shows it
    QString download_path;      // as a row shows it
    QString transfer_size;      // bytes
    QString transfer_timestamp; // seconds since 1970 UTC
    QString transfer_type;
    QString transfer_uuid;
};

// The values of one item. All texts; null where the list has none.
struct item_fields
{
    QString local_path; // as a row shows it
    QString duplicate;
    QString remote_path;
    QString file_type;
    QString remote_modification_date; // seconds since 1970 UTC
    QString remote_mask;
};

struct transfer_row : row_origin, connection_fields, transfer_fields, item_fields, copy_fields
{
};

// In the order of the statement's placeholders.
constexpr results::column_field<transfer_row> transfer_columns[] = {
    {"bookmark", &transfer_row::bookmark},
    {"system_user", &transfer_row::system_user},
    {"comment", &transfer_row::comment},
    {"hostname", &transfer_row::hostname},
    {"port", &transfer_row::port},
    {"protocol", &transfer_row::protocol},
    {"uuid", &transfer_row::uuid},
    {"username", &transfer_row::username},
    {"upload_path", &transfer_row::upload_path},
    {"download_path", &transfer_row::download_path},
    {"access_timestamp", &transfer_row::access_timestamp},
    {"local_path", &transfer_row::local_path},
    {"duplicate", &transfer_row::duplicate},
    {"remote_path", &transfer_row::remote_path},
    {"file_type", &transfer_row::file_type},
    {"remote_modification_date", &transfer_row::remote_modification_date},
    {"remote_mask", &transfer_row::remote_mask},
    {"file_name", &transfer_row::file_name},
    {"file_size", &transfer_row::file_size},
    {"file_exist", &transfer_row::file_exist},
    {"suffix", &transfer_row::suffix},
    {"transfer_size", &transfer_row::transfer_size},
    {"transfer_timestamp", &transfer_row::transfer_timestamp},
    {"transfer_type", &transfer_row::transfer_type},
    {"transfer_uuid", &transfer_row::transfer_uuid},
    {"preview_file_path", &transfer_row::local_path},
    {"export_file_paths", &transfer_row::local_path},
    {"date_added", &transfer_row::date_of_adding},
    {"content_creation_date", &transfer_row::content_creation_date},
    {"content_modification_date", &transfer_row::content_modification_date},
    {"content_type", &transfer_row::content_type},
    {"fs_content_change_date", &transfer_row::fs_content_change_date},
    {"fs_creation_date", &transfer_row::fs_creation_date},
    {"fs_name", &transfer_row::fs_name},
    {"fs_node_count", &transfer_row::fs_node_count},
    {"last_used_date", &transfer_row::last_used_date},
    {"used_dates", &transfer_row::used_dates},
    {"first_date", &transfer_row::first_date},
    {"last_date", &transfer_row::last_date},
    {"wherefrom", &transfer_row::where_from},
    {"latitude", &transfer_row::latitude},
    {"longitude", &transfer_row::longitude},
    {"altitude", &transfer_row::altitude},
    {"torrent_file_list", &transfer_row::torrent_file_list},
    {"attr_file_type", &transfer_row::attr_file_type},
    {"source_file", &transfer_row::source_file},
    {"artifacts_relation_source_file", &transfer_row::artifacts_relation_source_file},
    {"extended_attributes_key_value", &transfer_row::extended_attributes_key_value},
    {"extended_attributes_value_for_search", &transfer_row::extended_attributes_value_for_search},
    {"source_count_name", &transfer_row::source_count_name},
    {"os_scheme_display", &transfer_row::os_scheme_display}};

static_assert(std::size(transfer_columns) == 51);

class transfers final : public extractor
{
public:
    static const extractor_profile own_profile;

    // The context outlives it.
    explicit transfers(const extraction_context &context);

    [[nodiscard]] const extractor_profile &profile() const override;
    [[nodiscard]] step read(const loaded_list &list, list_run *run) override;

    // Logs the notes that the sources of metadata left. Call it after the run.
    void log_notes() { copies_.log_notes(); }

private:
    // `row` holds the transfer's own fields. Those of the previous item are replaced.
    // False when the list gives no more values.
    bool describe_item(const formats::property_list_value &item, const QString &user,
                       transfer_row *row, list_run *run);

    local_copies copies_;
    bool told_names_left_out_ = false;
};

} // namespace extraction
