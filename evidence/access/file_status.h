// What the file system keeps of one file or folder. Not by Qt: it goes by way of local time, which
// is a day wrong for some zones and years.
#pragma once

#include <QtGlobal>

#include <sys/stat.h>
#include <sys/types.h>

#include <optional>

namespace evidence {

// In milliseconds since 1970 UTC, finer parts dropped; nullopt where the file system keeps none.
struct file_times
{
    std::optional<qint64> born_ms;
    std::optional<qint64> modified_ms; // the content
    std::optional<qint64> accessed_ms;
};

struct file_status
{
    mode_t mode = 0;
    qint64 size = 0; // bytes
    dev_t device = 0;
    ino_t inode = 0;
    uid_t owner = 0;
    gid_t group = 0;
    quint64 links = 0; // names that the file has
    file_times times;
};

// Of what the descriptor `held` holds; for -1 of `path`, where a link in the last component is not
// followed. Nullopt when there is none; errno then holds the reason.
[[nodiscard]] std::optional<file_status> status_of(int held, const char *path);

} // namespace evidence
