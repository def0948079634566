#include "evidence_file.h"

#include "file_names.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace support {

namespace {

// O_NONBLOCK keeps the open of a FIFO from waiting for a writer.
constexpr int file_flags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;

} // namespace

int open_unchanged(int parent, const char *path, int flags)
{
    flags |= O_RDONLY;
#ifdef O_NOATIME
    const int descriptor = ::openat(parent, path, flags | O_NOATIME);
    // Only the owner may ask for it; everybody else gets EPERM.
    if (descriptor >= 0 || errno != EPERM)
        return descriptor;
#endif
    return ::openat(parent, path, flags);
}

evidence_file::~evidence_file()
{
    close();
}

evidence_file::evidence_file(evidence_file &&other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1))
    , size_bytes_(std::exchange(other.size_bytes_, 0))
{
}

evidence_file &evidence_file::operator=(evidence_file &&other) noexcept
{
    if (this != &other) {
        close();
        descriptor_ = std::exchange(other.descriptor_, -1);
        size_bytes_ = std::exchange(other.size_bytes_, 0);
    }
    return *this;
}

bool evidence_file::open(const QString &path)
{
    return open(support::encoded_name(path).constData());
}

bool evidence_file::open(const char *encoded_path)
{
    return open_at(AT_FDCWD, encoded_path);
}

bool evidence_file::open_at(int folder, const char *encoded_name)
{
    close();
    descriptor_ = open_unchanged(folder, encoded_name, file_flags);
    if (descriptor_ < 0)
        return false;
    struct stat status = {};
    if (::fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) {
        close();
        return false;
    }
    size_bytes_ = status.st_size;
    return true;
}

void evidence_file::close()
{
    if (descriptor_ >= 0)
        ::close(descriptor_);
    descriptor_ = -1;
    size_bytes_ = 0;
}

qint64 evidence_file::read_at(qint64 offset, void *buffer, qint64 length) const
{
    if (descriptor_ < 0 || offset < 0 || length < 0)
        return -1;
    qint64 done = 0;
    while (done < length) {
        const ssize_t got = ::pread(descriptor_, static_cast<char *>(buffer) + done,
                                    static_cast<size_t>(length - done), offset + done);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return -1;
        if (got == 0)
            break;
        done += got;
    }
    return done;
}

bool evidence_file::read_all(QByteArray *bytes, qint64 limit_bytes) const
{
    bytes->resize(0);
    if (descriptor_ < 0 || size_bytes_ > limit_bytes)
        return false;
    bytes->resize(static_cast<int>(size_bytes_));
    const qint64 got = read_at(0, bytes->data(), size_bytes_);
    bytes->resize(got < 0 ? 0 : static_cast<int>(got));
    return got >= 0;
}

} // namespace support
