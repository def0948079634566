// What "extract" prints on standard output when it ends.
#pragma once

#include "extraction_run.h"

#include <QPair>
#include <QString>

#include <optional>
#include <vector>

namespace host {

struct table_counts
{
    // Table and its rows; nothing where the table is missing.
    std::vector<std::pair<QString, std::optional<qint64>>> rows;
    QString problem; // why the database could not be read; empty: it was
};

// Counts in the database itself: that is what the examiner will see.
table_counts count_tables(const QString &database);

// Other programs read both forms: do not rename or reorder.
QString text_summary(const QString &database, const run_result &result, const table_counts &counts);
// One line; a table that is missing counts null.
QString json_summary(const QString &database, const run_result &result, const table_counts &counts);

} // namespace host
