#include "evidence/access/file_status.h"

#include <fcntl.h>
#include <sys/sysmacros.h>

namespace evidence {

namespace {

std::optional<qint64> milliseconds(const struct statx &found, unsigned field,
                                   const statx_timestamp &stamp)
{
    if ((found.stx_mask & field) == 0)
        return std::nullopt;
    return qint64{stamp.tv_sec} * 1000 + qint64{stamp.tv_nsec} / 1000000;
}

} // namespace

std::optional<file_status> status_of(int held, const char *path)
{
    const bool is_held = held >= 0;
    struct statx found = {};
    if (::statx(is_held ? held : AT_FDCWD, is_held ? "" : path,
                is_held ? AT_EMPTY_PATH : AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME,
                &found) != 0)
        return std::nullopt;
    file_status status;
    status.mode = found.stx_mode;
    status.size = static_cast<qint64>(found.stx_size);
    status.device = makedev(found.stx_dev_major, found.stx_dev_minor);
    status.inode = found.stx_ino;
    status.owner = found.stx_uid;
    status.group = found.stx_gid;
    status.links = found.stx_nlink;
    status.times = {milliseconds(found, STATX_BTIME, found.stx_btime),
                    milliseconds(found, STATX_MTIME, found.stx_mtime),
                    milliseconds(found, STATX_ATIME, found.stx_atime)};
    return status;
}

} // namespace evidence
