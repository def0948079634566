// The Spotlight attributes of a local copy that every transfer's row holds, and the place where a
// picture was taken, as texts.
#pragma once

#include "platform/spotlight_item.h"
#include "run/log_sink.h"

#include <QString>

namespace extraction {

// All null when unknown. Dates are seconds since 1970 UTC.
struct copy_attributes
{
    QString date_added;
    QString content_creation_date;
    QString content_modification_date;
    QString content_type;
    QString kind;
    QString fs_content_change_date;
    QString fs_creation_date;
    QString fs_name;
    QString fs_node_count;
    QString where_from;        // parted by ";"
    QString latitude;          // degrees, negative in the south
    QString longitude;         // degrees, negative in the west
    QString altitude;          // metres
    QString torrent_file_list; // parted by ";"
};

// In degrees with 6 significant digits; null where unknown.
struct position_texts
{
    QString latitude;
    QString longitude;
};

// Without the position: position_of() reads it from the picture.
[[nodiscard]] copy_attributes attributes_of(const platform::spotlight_item &item,
                                            const run::log_sink &log);
// `place`: inside the source, with its file held.
[[nodiscard]] position_texts position_of(const evidence::resolved_path &place);

} // namespace extraction
