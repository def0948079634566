// lstat as macOS has it.
#include <sys/stat.h>

#undef stat
#undef lstat

#include <fcntl.h>

namespace {

timespec stamp(const statx_timestamp &time)
{
    return {time.tv_sec, time.tv_nsec};
}

} // namespace

int stand_in_lstat(const char *path, stand_in_stat *found)
{
    struct statx times = {};
    const int result =
        ::statx(AT_FDCWD, path, AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME, &times);
    *found = {stamp(times.stx_btime), stamp(times.stx_mtime), stamp(times.stx_atime)};
    return result;
}
