// The values that every row of every table has.
#pragma once

#include "extraction/source/extraction_context.h"
#include "extraction/source/path_mapper.h"

#include <QString>

namespace extraction {

struct row_origin
{
    QString bookmark = QStringLiteral("0"); // not tagged by the examiner
    QString system_user;
    QString source_file;
    QString artifacts_relation_source_file;
    QString source_count_name;
    QString os_scheme_display;
};

// The values that all rows of one user share. set_place() adds the rest.
[[nodiscard]] row_origin origin_of(const QString &user, const examined_source &source);
// Sets the path of the row's list; `path` is reachable here.
void set_place(const QString &path, const path_mapper &paths, row_origin *row);

} // namespace extraction
