// The times that the file system keeps of one file.
#pragma once

#include <QString>

namespace extraction {

// Seconds since 1970 UTC; 0 when unknown.
struct posix_times
{
    qint64 created = 0;  // birth
    qint64 modified = 0; // last change of the content
    qint64 accessed = 0; // last read
};

// Of `prefix` followed by `path`. Links are followed as the examined machine would have followed
// them, and never out of the folder that `prefix` names.
[[nodiscard]] posix_times posix_times_of(QString path, QString prefix);

} // namespace extraction
