#include "extraction/lists/row_origin.h"

namespace extraction {

row_origin origin_of(const QString &user, const examined_source &source)
{
    row_origin origin;
    origin.system_user = user;
    origin.source_count_name = source.count_name;
    origin.os_scheme_display = source.os_display;
    return origin;
}

void set_place(const QString &path, const path_mapper &paths, row_origin *row)
{
    const QPair<QString, QString> files = paths.source_files(path, row->system_user);
    row->source_file = files.first;
    row->artifacts_relation_source_file = files.second;
}

} // namespace extraction
