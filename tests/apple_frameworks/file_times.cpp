// lstat and fstat as macOS has them.
#include <sys/stat.h>

#undef stat
#undef lstat
#undef fstat

#include <fcntl.h>
#include <sys/sysmacros.h>

namespace {

timespec stamp(const statx_timestamp &time)
{
    return {time.tv_sec, time.tv_nsec};
}

int status_of(int file, const char *path, int flags, stand_in_stat *status)
{
    struct statx found = {};
    const int result = ::statx(file, path, flags, STATX_BASIC_STATS | STATX_BTIME, &found);
    *status = {found.stx_mode,
               static_cast<off_t>(found.stx_size),
               makedev(found.stx_dev_major, found.stx_dev_minor),
               found.stx_ino,
               found.stx_uid,
               found.stx_gid,
               found.stx_nlink,
               stamp(found.stx_btime),
               stamp(found.stx_mtime),
               stamp(found.stx_atime)};
    return result;
}

} // namespace

int stand_in_lstat(const char *path, stand_in_stat *found)
{
    return status_of(AT_FDCWD, path, AT_SYMLINK_NOFOLLOW, found);
}

int stand_in_fstat(int file, stand_in_stat *found)
{
    return status_of(file, "", AT_EMPTY_PATH, found);
}
