#include "evidence/files/byte_source.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <utility>

namespace evidence {

namespace {

// Bytes that can be read at `offset`; 0 for arguments outside of `size`.
qint64 readable(qint64 size, qint64 offset, qint64 length)
{
    if (offset < 0 || length <= 0 || offset >= size)
        return 0;
    const qint64 most = std::numeric_limits<int>::max() / 2;
    return std::min({length, size - offset, most});
}

} // namespace

evidence_byte_source::evidence_byte_source(evidence::evidence_file file)
    : file_(std::move(file))
{
}

QByteArray evidence_byte_source::read(qint64 offset, qint64 length)
{
    const qint64 wanted = readable(file_.size(), offset, length);
    QByteArray bytes(static_cast<int>(wanted), Qt::Uninitialized);
    const qint64 got = file_.read_at(offset, bytes.data(), wanted);
    bytes.truncate(static_cast<int>(std::max<qint64>(got, 0)));
    return bytes;
}

memory_byte_source::memory_byte_source(QByteArray bytes)
    : bytes_(std::move(bytes))
{
}

QByteArray memory_byte_source::read(qint64 offset, qint64 length)
{
    const qint64 wanted = readable(bytes_.size(), offset, length);
    return wanted == 0 ? QByteArray()
                       : bytes_.mid(static_cast<int>(offset), static_cast<int>(wanted));
}

memory_byte_folder::memory_byte_folder(QHash<QString, QByteArray> files)
    : files_(std::move(files))
{
}

std::unique_ptr<byte_source> memory_byte_folder::open(const QString &name, int *error) const
{
    const auto file = files_.constFind(name);
    if (file == files_.constEnd()) {
        *error = ENOENT;
        return nullptr;
    }
    return std::make_unique<memory_byte_source>(*file);
}

} // namespace evidence
