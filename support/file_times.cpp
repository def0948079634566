// The times that the file system keeps of one file.
#include "plugin_static_function.h"

#include "source_boundary.h"

#include <QFileInfo>

namespace {

qint64 epoch_seconds(const QDateTime &time)
{
    return time.isValid() ? time.toMSecsSinceEpoch() / 1000 : 0;
}

} // namespace

// Links are followed as the examined machine would have followed them, and never out of the folder
// that `prefix` names.
struct_posix_timestamp plugin_static_function::get_posix_timestamp(QString path, QString prefix)
{
    path = path.trimmed();
    prefix = prefix.trimmed();
    if (path.isEmpty() || prefix.isEmpty())
        return {};
    // A root without its "/" would count as the start of a name, and its parent as the source.
    const bool parted = path.startsWith(QLatin1Char('/')) && !prefix.endsWith(QLatin1Char('/'));
    const support::source_boundary source(parted ? prefix + QLatin1Char('/') : prefix);
    const support::resolved_path file = source.resolve(prefix + path);
    if (file.where != support::reach::inside)
        return {};
    const QFileInfo info(file.path);
    if (!info.exists())
        return {};
    return {epoch_seconds(info.birthTime()), epoch_seconds(info.lastModified()),
            epoch_seconds(info.lastRead())};
}
