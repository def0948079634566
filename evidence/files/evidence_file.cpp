#include "evidence/files/evidence_file.h"

#include "evidence/access/source_open.h"
#include "evidence/files/file_names.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>

namespace evidence {

bool evidence_file::open(const QString &path)
{
    return open(encoded_name(path));
}

bool evidence_file::open(const QByteArray &encoded_path)
{
    close();
    auto held = std::make_shared<held_file>();
    return held->hold(encoded_path) && open(held);
}

bool evidence_file::open(std::shared_ptr<const held_file> held)
{
    close();
    if (held->for_reading() < 0)
        return false;
    size_bytes_ = held->status().size;
    held_ = std::move(held);
    return true;
}

bool evidence_file::open_listed(int folder, const char *encoded_name)
{
    close();
    // Another entry may stand under the name by now. O_NONBLOCK keeps the open of a FIFO from
    // waiting for a writer.
    evidence::descriptor opened = open_unchanged(folder, encoded_name, O_NONBLOCK | O_NOCTTY);
    struct stat status = {};
    if (!opened.is_open())
        return false;
    if (::fstat(opened.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        errno = ENOENT;
        return false;
    }
    descriptor_ = std::move(opened);
    size_bytes_ = status.st_size;
    return true;
}

qint64 evidence_file::read_at(qint64 offset, void *buffer, qint64 length) const
{
    if (!is_open() || offset < 0 || length < 0)
        return -1;
    qint64 done = 0;
    while (done < length) {
        const ssize_t got = ::pread(descriptor(), static_cast<char *>(buffer) + done,
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
    if (!is_open() || size_bytes_ > limit_bytes)
        return false;
    bytes->resize(static_cast<int>(size_bytes_));
    const qint64 got = read_at(0, bytes->data(), size_bytes_);
    bytes->resize(got < 0 ? 0 : static_cast<int>(got));
    return got >= 0;
}

} // namespace evidence
