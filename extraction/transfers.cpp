#include "extraction/transfers.h"

#include "extraction/lists/list_run.h"
#include "extraction/lists/list_values.h"

namespace extraction {

namespace {

using formats::value_kind;

constexpr extractor_words make_words()
{
    extractor_words words;
    words.starts = "[xcode_extract_transfers] starts";
    words.database_failed = "[xcode_extract_transfers] destination_db  open ------FAILED------";
    words.failed_end = "[xcode_extract_transfers] end with failure";
    words.path_failed = "[xcode_extract_transfers] target_file open ------FAILED------%1";
    words.list_failed = "[xcode_extract_transfers] m_plist open ------FAILED------%1";
    words.outside_source = "[xcode_extract_transfers] outside the source ------FAILED------%1";
    words.text_cut = "[xcode_extract_transfers] text too long, cut ------FAILED------%1";
    words.values_left_out =
        "[xcode_extract_transfers] list too large, values left out ------FAILED------%1";
    words.folder_failed = "[xcode_extract_transfers] folder open ------FAILED------%1";
    words.ends = "[xcode_extract_transfers] end";
    words.rows.signature = "void cyberduck_macos::xcode_extract_transfers()";
    words.rows.insert_signature = words.rows.signature;
    words.rows.insert_failed =
        "[xcode_extract_transfers] insert in transfers ---------FAILED--------";
    words.rows.insert_error = "[xcode_extract_transfers]%1";
    words.rows.insert_query = "%1";
    words.rows.commit_failed = "[xcode_extract_transfers] commit ------FAILED------%1";
    return words;
}

constexpr char host_missing[] =
    "[xcode_extract_transfers] Empty host_dict Dictionary is nil --Host--";
constexpr char items_missing[] = "[xcode_extract_transfers] items_array is nil ";
constexpr char ambiguous_name[] =
    "[xcode_extract_transfers] names differ in case only ------FAILED------%1";
constexpr char names_left_out[] =
    "[xcode_extract_transfers] too many names, other spellings not looked for ------FAILED------";
constexpr char places_left_out[] =
    "[xcode_extract_transfers] path too long to be followed ------FAILED------%1";
constexpr char rows_left_out[] =
    "[xcode_extract_transfers] items too large, rest left out ------FAILED------%1";

const key_field<transfer_fields> transfer_keys[] = {
    {QStringLiteral("Type"), &transfer_fields::transfer_type},
    {QStringLiteral("UUID"), &transfer_fields::transfer_uuid},
    {QStringLiteral("Size"), &transfer_fields::transfer_size},
};

void read_host(const formats::property_list_value &host, const QString &user,
               const path_mapper &paths, transfer_row *row)
{
    row->upload_path =
        paths.shown_folder(recorded_path(host, QStringLiteral("Upload Folder Dictionary")), user);
    row->download_path =
        paths.shown_folder(recorded_path(host, QStringLiteral("Download Folder Dictionary")), user);
    read_connection(host, row);
}

// The remote "Size" is not read: file_size is the size of the local copy.
void read_remote(const formats::property_list_value &item, item_fields *row)
{
    const formats::property_list_value remote = dictionary_of(item, QStringLiteral("Remote"));
    const formats::property_list_value attributes =
        dictionary_of(remote, QStringLiteral("Attributes"));
    row->file_type = trimmed_text(remote, QStringLiteral("Type"));
    row->remote_path = trimmed_text(remote, QStringLiteral("Remote"));
    row->remote_modification_date = seconds_text(attributes, QStringLiteral("Modified"));
    row->duplicate = trimmed_text(attributes, QStringLiteral("Duplicate"));
    row->remote_mask = trimmed_text(dictionary_of(attributes, QStringLiteral("Permission")),
                                    QStringLiteral("Mask"));
}

} // namespace

const extractor_profile transfers::own_profile = {
    make_words(),
    ".cyberducktransfer",
    "insert into transfers (bookmark,system_user, comment,hostname,port,protocol,uuid, "
    "username,upload_path,download_path,access_timestamp,local_path,duplicate,"
    "remote_path,file_type, remote_modification_date,remote_mask,file_name, file_size,"
    "file_exist,suffix,transfer_size, transfer_timestamp, transfer_type, transfer_uuid,"
    "preview_file_path,export_file_paths, date_added,content_creation_date,"
    "content_modification_date,content_type,fs_content_change_date, fs_creation_date,"
    "fs_name,fs_node_count,last_used_date,used_dates,first_date, last_date,wherefrom,"
    "latitude,longitude,altitude,torrent_file_list,attr_file_type,source_file,"
    "artifacts_relation_source_file,extended_attributes_key_value, "
    "extended_attributes_value_for_search,source_count_name,os_scheme_display)values (?,"
    "?,?,?,?, ?,?,?,?,?, ?,?,?,?,?, ?,?,?,?,?, ?,?,?,?,?,  ?,?,?,?,?,  ?,?,?,?,?,  ?,?,?,"
    "?,?,  ?,?,?,?,?, ?,?,?,?,?,? )",
};

transfers::transfers(const extraction_context &context)
    : copies_(context)
{
}

const extractor_profile &transfers::profile() const
{
    return own_profile;
}

step transfers::read(const loaded_list &list, list_run *run)
{
    transfer_row row;
    static_cast<row_origin &>(row) = list.origin;
    read_texts<transfer_fields>(list.root, transfer_keys, &row);
    row.transfer_timestamp = seconds_text(list.root, QStringLiteral("Timestamp"));
    const formats::property_list_value host = dictionary_of(list.root, QStringLiteral("Host"));
    if (host.is(value_kind::absent)) {
        run->log(host_missing);
        return step::done;
    }
    read_host(host, list.user, run->paths(), &row);
    const formats::property_list_value items = list.root.value(QStringLiteral("Items"));
    if (!items.is(value_kind::array)) {
        run->log(items_missing);
        return step::done;
    }
    const int count = items.count();
    for (int i = 0; i < count; ++i) {
        if (run->is_cancelled())
            return step::cancelled;
        const formats::property_list_value item = items.at(i);
        if (!item.is(value_kind::dictionary))
            continue;
        if (run->rows().list_is_full() || !describe_item(item, list.user, &row, run)) {
            run->log(rows_left_out, list.path);
            return step::done;
        }
        // A cancelled run may have described the copy in part only: that is no row.
        if (run->is_cancelled())
            return step::cancelled;
        run->rows().insert(transfer_columns, row);
    }
    return step::done;
}

bool transfers::describe_item(const formats::property_list_value &item, const QString &user,
                              transfer_row *row, list_run *run)
{
    // The row is reused for every item: copying it would cost time.
    static_cast<item_fields &>(*row) = {};
    static_cast<copy_fields &>(*row) = {};
    read_remote(item, row);
    const QString recorded = recorded_path(item, QStringLiteral("Local Dictionary"));
    if (item.is_spent())
        return false;
    const QString local_path =
        recorded.isNull() ? QString() : run->paths().reachable(recorded, user);
    const evidence::resolved_path place =
        local_path.isEmpty() ? evidence::resolved_path() : run->boundary().hold(local_path);
    if (place.where == evidence::reach::outside)
        run->log(own_profile.words.outside_source, local_path);
    if (place.where == evidence::reach::denied)
        run->log(own_profile.words.folder_failed, place.path);
    if (place.where == evidence::reach::ambiguous)
        run->log(ambiguous_name, local_path);
    if (place.where == evidence::reach::costly)
        run->log(places_left_out, local_path);
    if (!told_names_left_out_ && run->boundary().left_names_out()) {
        run->log(names_left_out);
        told_names_left_out_ = true;
    }
    row->local_path = run->paths().shown(local_path, user);
    copies_.describe(local_path, place, row);
    return true;
}

} // namespace extraction
