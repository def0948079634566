#include "platform/file_times.h"

#include "support/file_names.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace platform {

namespace {

template <typename time_stamp> qint64 milliseconds(const time_stamp &stamp)
{
    return qint64{stamp.tv_sec} * 1000 + qint64{stamp.tv_nsec} / 1000000;
}

} // namespace

std::optional<file_times> times_of(const QString &path)
{
    const QByteArray encoded = support::encoded_name(path);
    if (encoded.contains('\0'))
        return std::nullopt;
    file_times times;
#ifdef STATX_BTIME
    struct statx found = {};
    if (::statx(AT_FDCWD, encoded.constData(), AT_SYMLINK_NOFOLLOW,
                STATX_BTIME | STATX_MTIME | STATX_ATIME, &found) != 0)
        return std::nullopt;
    if ((found.stx_mask & STATX_BTIME) != 0)
        times.born_ms = milliseconds(found.stx_btime);
    if ((found.stx_mask & STATX_MTIME) != 0)
        times.modified_ms = milliseconds(found.stx_mtime);
    if ((found.stx_mask & STATX_ATIME) != 0)
        times.accessed_ms = milliseconds(found.stx_atime);
#else
    struct stat found = {};
    if (::lstat(encoded.constData(), &found) != 0)
        return std::nullopt;
#ifdef __APPLE__
    times.born_ms = milliseconds(found.st_birthtimespec);
    times.modified_ms = milliseconds(found.st_mtimespec);
    times.accessed_ms = milliseconds(found.st_atimespec);
#else
    times.modified_ms = milliseconds(found.st_mtim);
    times.accessed_ms = milliseconds(found.st_atim);
#endif
#endif
    return times;
}

} // namespace platform
