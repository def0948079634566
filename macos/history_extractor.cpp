// One row per past connection of every user.
#include "history_extractor.h"

#include "cyberduck_macos.h"

namespace macos {

const extractor_profile history_profile = {
    {
        "void cyberduck_macos::xcode_extract_history()",
        "[xcode_extract_history] starts",
        "[xcode_extract_history] destination_db  open ------FAILED------",
        "[xcode_extract_history] end with failure",
        "[xcode_extract_history] target_file open ------FAILED------",
        "[xcode_extract_history] m_plist is nil ------FAILED------",
        "[xcode_extract_history] outside the source ------FAILED------",
        "[xcode_extract_history] text too long, cut ------FAILED------",
        "[xcode_extract_history] list too large, values left out ------FAILED------",
        "[xcode_extract_history] folder open ------FAILED------",
        " insert in history ---------FAILED----- ",
        true,
        " --Error--",
        "Query :- ",
        "[xcode_extract_history] commit ------FAILED------",
        "[xcode_extract_history] end",
    },
    ".duck",
    "insert into history (bookmark,system_user, comment,hostname,port,protocol,uuid, "
    "username,access_timestamp,source_file, artifacts_relation_source_file, "
    "source_count_name,os_scheme_display) values (?,?,?,?,?, ?,?,?,?,?, ?,?,?)",
};

} // namespace macos

void cyberduck_macos::xcode_extract_history()
{
    macos::extractor_run run(macos::history_profile, environment());
    if (!run.open())
        return;
    run.read_lists(history_dir_list, [&run](const macos::loaded_list &list) {
        macos::history_row row;
        run.set_origin(list, &row);
        macos::read_connection(list.root, &row);
        run.insert(macos::history_columns, row);
        return macos::step::done;
    });
}
