// One row per past connection of every user.
#pragma once

#include "extraction/lists/connection_fields.h"
#include "extraction/lists/extractor.h"

namespace extraction {

struct history_row : row_origin, connection_fields
{
};

// In the order of the statement's placeholders.
constexpr results::column_field<history_row> history_columns[] = {
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

class history final : public extractor
{
public:
    static const extractor_profile own_profile;

    [[nodiscard]] const extractor_profile &profile() const override;
    [[nodiscard]] step read(const loaded_list &list, list_run *run) override;
};

} // namespace extraction
