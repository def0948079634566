#include "extraction/history.h"

#include "extraction/lists/list_run.h"

namespace extraction {

namespace {

constexpr extractor_words make_words()
{
    extractor_words words;
    words.starts = "[xcode_extract_history] starts";
    words.database_failed = "[xcode_extract_history] destination_db  open ------FAILED------";
    words.failed_end = "[xcode_extract_history] end with failure";
    words.path_failed = "[xcode_extract_history] target_file open ------FAILED------%1";
    words.list_failed = "[xcode_extract_history] m_plist is nil ------FAILED------%1";
    words.outside_source = "[xcode_extract_history] outside the source ------FAILED------%1";
    words.text_cut = "[xcode_extract_history] text too long, cut ------FAILED------%1";
    words.values_left_out =
        "[xcode_extract_history] list too large, values left out ------FAILED------%1";
    words.folder_failed = "[xcode_extract_history] folder open ------FAILED------%1";
    words.ends = "[xcode_extract_history] end";
    words.rows.signature = "void cyberduck_macos::xcode_extract_history()";
    words.rows.insert_signature = words.rows.signature;
    words.rows.insert_failed = " insert in history ---------FAILED----- %1";
    words.rows.insert_error = " --Error--%1";
    words.rows.insert_query = "Query :- %1";
    words.rows.commit_failed = "[xcode_extract_history] commit ------FAILED------%1";
    return words;
}

} // namespace

const extractor_profile history::own_profile = {
    make_words(),
    ".duck",
    "insert into history (bookmark,system_user, comment,hostname,port,protocol,uuid, "
    "username,access_timestamp,source_file, artifacts_relation_source_file, "
    "source_count_name,os_scheme_display) values (?,?,?,?,?, ?,?,?,?,?, ?,?,?)",
};

const extractor_profile &history::profile() const
{
    return own_profile;
}

step history::read(const loaded_list &list, list_run *run)
{
    history_row row;
    static_cast<row_origin &>(row) = list.origin;
    read_connection(list.root, &row);
    run->rows().insert(history_columns, row);
    return step::done;
}

} // namespace extraction
