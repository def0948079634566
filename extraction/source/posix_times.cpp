#include "extraction/source/posix_times.h"

#include "evidence/folders/source_boundary.h"

namespace extraction {

namespace {

constexpr qint64 milliseconds_per_second = 1000;

qint64 epoch_seconds(const std::optional<qint64> &time_ms)
{
    return time_ms.value_or(0) / milliseconds_per_second;
}

} // namespace

posix_times posix_times_of(QString path, QString prefix)
{
    path = path.trimmed();
    prefix = prefix.trimmed();
    if (path.isEmpty() || prefix.isEmpty())
        return {};
    // Without its "/" the root would be taken for the start of a name, and its parent for the
    // source.
    const bool parted = path.startsWith(QLatin1Char('/')) && !prefix.endsWith(QLatin1Char('/'));
    const evidence::source_boundary source(parted ? prefix + QLatin1Char('/') : prefix);
    const evidence::resolved_path place = source.hold(prefix + path);
    if (place.where != evidence::reach::inside)
        return {};
    const evidence::file_times &times = place.file->status().times;
    return {epoch_seconds(times.born_ms), epoch_seconds(times.modified_ms),
            epoch_seconds(times.accessed_ms)};
}

} // namespace extraction
