#include "formats/exif/byte_window.h"

#include <QtGlobal>

namespace formats {

byte_window::byte_window(evidence::byte_source &whole, qint64 offset, qint64 length)
    : whole_(whole)
    , offset_(qBound<qint64>(0, offset, whole.size()))
    , length_(qBound<qint64>(0, length, whole.size() - offset_))
{
}

QByteArray byte_window::read(qint64 offset, qint64 length)
{
    if (offset < 0 || offset >= length_ || length <= 0)
        return {};
    return whole_.read(offset_ + offset, qMin(length, length_ - offset));
}

} // namespace formats
