// One row per known preference of a user's preferences file.
#pragma once

#include "extraction/lists/extractor.h"

#include <QSqlDatabase>
#include <QString>

namespace extraction {

struct preference_row : row_origin
{
    QString key;   // the label
    QString value; // the rendered value
};

// In the order of the statement's placeholders.
constexpr results::column_field<preference_row> preference_columns[] = {
    {"system_user", &preference_row::system_user},
    {"key", &preference_row::key},
    {"value", &preference_row::value},
    {"source_file", &preference_row::source_file},
    {"artifacts_relation_source_file", &preference_row::artifacts_relation_source_file},
    {"source_count_name", &preference_row::source_count_name},
    {"os_scheme_display", &preference_row::os_scheme_display},
};

class preferences final : public extractor
{
public:
    static const extractor_profile own_profile;

    [[nodiscard]] const extractor_profile &profile() const override;
    [[nodiscard]] step read(const loaded_list &list, list_run *run) override;
};

// A preference that the host hands over as texts.
struct single_preference
{
    QString list_path; // reachable here
    QString user;
    QString label;
    QString value;
};

// Inserts it through a connection that the caller holds open. Logs a failure.
void insert_preference(const single_preference &preference, const QSqlDatabase &database,
                       const extraction_context &context);

} // namespace extraction
