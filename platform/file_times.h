// The times that the file system keeps of one file. Qt hands them out as local time, and comes back
// from there a day wrong for some zones and years.
#pragma once

#include <QString>

#include <optional>

namespace platform {

// In milliseconds since 1970 UTC, finer parts dropped; nullopt where the file system keeps none.
struct file_times
{
    std::optional<qint64> born_ms;
    std::optional<qint64> modified_ms; // the content
    std::optional<qint64> accessed_ms;
};

// `path`: reachable here. A link in its last component is not followed: the times are the link's.
// nullopt when there is no such file.
[[nodiscard]] std::optional<file_times> times_of(const QString &path);

} // namespace platform
