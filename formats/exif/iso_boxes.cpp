#include "formats/exif/iso_boxes.h"

#include <limits>

namespace formats {

namespace {

constexpr int max_boxes = 65536;
constexpr int type_bytes = 4;
constexpr qint64 header_bytes = 8;
constexpr qint64 wide_header_bytes = 16;
constexpr quint64 length_follows = 1; // in eight bytes, behind the type
constexpr quint64 up_to_the_end = 0;

} // namespace

std::optional<iso_box> iso_box_walk::next()
{
    const QByteArray header = boxes_.read(offset_, wide_header_bytes);
    if (header.size() < header_bytes || count_++ == max_boxes)
        return std::nullopt;
    iso_fields fields(header);
    quint64 length = fields.take(4);
    fields.skip(type_bytes);
    const bool is_wide = length == length_follows;
    if (is_wide)
        length = fields.take(8);
    const qint64 left = boxes_.size() - offset_;
    if (length == up_to_the_end && !is_wide)
        length = static_cast<quint64>(left);
    const qint64 own_header = is_wide ? wide_header_bytes : header_bytes;
    if (length < static_cast<quint64>(own_header) || left < own_header)
        return std::nullopt;
    iso_box box;
    box.type = header.mid(4, type_bytes);
    box.offset = offset_ + own_header;
    box.is_whole = length <= static_cast<quint64>(left);
    offset_ += box.is_whole ? static_cast<qint64>(length) : left;
    box.length = offset_ - box.offset;
    return box;
}

quint64 iso_fields::take(int bytes)
{
    quint64 number = 0;
    for (qint64 at = offset_; at < offset_ + bytes && offset_ + bytes <= bytes_.size(); ++at)
        number = number << 8 | static_cast<quint8>(bytes_[static_cast<int>(at)]);
    offset_ += bytes;
    return number;
}

void iso_fields::skip(qint64 bytes)
{
    offset_ += bytes;
}

int iso_fields::take_version()
{
    const auto version = static_cast<int>(take(1));
    skip(3);
    return version;
}

} // namespace formats
