// What the history extractor adds to the shared frame: words, statement, columns, fields.
#pragma once

#include "connection_fields.h"
#include "extractor_run.h"

namespace macos {

struct history_row : row_origin, connection_fields
{
};

extern const extractor_profile history_profile;

// In the order of the statement's placeholders.
constexpr column_field<history_row> history_columns[] = {
    {"bookmark", &history_row::bookmark},
    {"system_user", &history_row::system_user},
    {"comment", &history_row::comment},
    {"hostname", &history_row::hostname},
    {"port", &history_row::port},
    {"protocol", &history_row::protocol},
    {"uuid", &history_row::uuid},
    {"username", &history_row::username},
    {"access_timestamp", &history_row::access_timestamp},
    {"source_file", &history_row::source_file},
    {"artifacts_relation_source_file", &history_row::artifacts_relation_source_file},
    {"source_count_name", &history_row::source_count_name},
    {"os_scheme_display", &history_row::os_scheme_display}};

} // namespace macos
