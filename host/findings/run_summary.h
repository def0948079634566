// What "extract" prints on standard output when it ends.
#pragma once

#include "host/findings/result_place.h"
#include "host/findings/run_report.h"

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

// Counts the rows in the database: those are what the examiner will see.
table_counts count_tables(const QString &database);

// Other programs read both forms: do not rename anything.
QString text_summary(const result_place &place, const run_report &report,
                     const table_counts &counts, bool is_incomplete, bool with_hints);
// One document. A missing table counts null.
QString json_summary(const result_place &place, const run_report &report,
                     const table_counts &counts);

} // namespace host
