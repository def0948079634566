#include "evidence/access/file_status.h"

namespace evidence {

namespace {

qint64 milliseconds(const timespec &stamp)
{
    return qint64{stamp.tv_sec} * 1000 + qint64{stamp.tv_nsec} / 1000000;
}

} // namespace

std::optional<file_status> status_of(int held, const char *path)
{
    struct stat found = {};
    if ((held >= 0 ? ::fstat(held, &found) : ::lstat(path, &found)) != 0)
        return std::nullopt;
    file_status status;
    status.mode = found.st_mode;
    status.size = found.st_size;
    status.device = found.st_dev;
    status.inode = found.st_ino;
    status.owner = found.st_uid;
    status.group = found.st_gid;
    status.links = static_cast<quint64>(found.st_nlink);
    status.times = {milliseconds(found.st_birthtimespec), milliseconds(found.st_mtimespec),
                    milliseconds(found.st_atimespec)};
    return status;
}

} // namespace evidence
