// The times that the file system keeps of one file.
#include "plugin_static_function.h"

#include "platform/file_times.h"
#include "source_boundary.h"

namespace {

constexpr qint64 milliseconds_per_second = 1000;

qint64 epoch_seconds(const std::optional<qint64> &time_ms)
{
    return time_ms.value_or(0) / milliseconds_per_second;
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
    const auto times = platform::times_of(file.path);
    if (!times)
        return {};
    return {epoch_seconds(times->born_ms), epoch_seconds(times->modified_ms),
            epoch_seconds(times->accessed_ms)};
}
