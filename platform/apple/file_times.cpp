#include "platform/file_times.h"

#include "support/file_names.h"

#include <sys/stat.h>

namespace platform {

namespace {

qint64 milliseconds(const timespec &stamp)
{
    return qint64{stamp.tv_sec} * 1000 + qint64{stamp.tv_nsec} / 1000000;
}

} // namespace

std::optional<file_times> times_of(const QString &path)
{
    const QByteArray encoded = support::encoded_name(path);
    struct stat found = {};
    if (encoded.contains('\0') || ::lstat(encoded.constData(), &found) != 0)
        return std::nullopt;
    return file_times{milliseconds(found.st_birthtimespec), milliseconds(found.st_mtimespec),
                      milliseconds(found.st_atimespec)};
}

} // namespace platform
