// What the preferences extractor writes.
#pragma once

#include "extractor_run.h"

namespace macos {

struct preference_row : row_origin
{
    QString key;   // the label
    QString value; // the rendered value
};

extern const char preferences_statement[];

// In the order of the statement's placeholders.
constexpr column_field<preference_row> preference_columns[] = {
    {"system_user", &preference_row::system_user},
    {"key", &preference_row::key},
    {"value", &preference_row::value},
    {"source_file", &preference_row::source_file},
    {"artifacts_relation_source_file", &preference_row::artifacts_relation_source_file},
    {"source_count_name", &preference_row::source_count_name},
    {"os_scheme_display", &preference_row::os_scheme_display},
};

} // namespace macos
