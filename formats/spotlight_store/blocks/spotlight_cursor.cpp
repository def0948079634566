#include "formats/spotlight_store/blocks/spotlight_cursor.h"

#include <QtEndian>

namespace formats {

namespace {

constexpr int max_leb128 = 10; // bytes that 64 bits need

} // namespace

bool spotlight_cursor::read_u8(quint8 *value)
{
    if (bytes_.empty())
        return false;
    *value = static_cast<quint8>(bytes_.front());
    bytes_.remove_prefix(1);
    return true;
}

bool spotlight_cursor::read_u32(quint32 *value)
{
    if (bytes_.size() < sizeof *value)
        return false;
    *value = little_endian_u32(bytes_, 0);
    bytes_.remove_prefix(sizeof *value);
    return true;
}

bool spotlight_cursor::read_u64(quint64 *value)
{
    if (bytes_.size() < sizeof *value)
        return false;
    *value = little_endian_u64(bytes_, 0);
    bytes_.remove_prefix(sizeof *value);
    return true;
}

bool spotlight_cursor::read_long_varint(quint64 *value)
{
    if (bytes_.empty())
        return false;
    const auto first = static_cast<quint8>(bytes_.front());
    size_t following = 0;
    while (following < 8 && (first & (0x80U >> following)) != 0)
        ++following;
    if (bytes_.size() <= following)
        return false;
    quint64 number = first & (0x7fU >> following);
    for (size_t i = 1; i <= following; ++i)
        number = number << 8 | static_cast<quint8>(bytes_[i]);
    bytes_.remove_prefix(following + 1);
    *value = number;
    return true;
}

bool spotlight_cursor::read_leb128(quint64 *value)
{
    quint64 number = 0;
    for (size_t i = 0; i < bytes_.size() && i < max_leb128; ++i) {
        const auto byte = static_cast<quint8>(bytes_[i]);
        const quint64 group = byte & 0x7fU;
        // The tenth byte has room for one bit only.
        if (i == max_leb128 - 1 && group > 1)
            return false;
        number |= group << (7 * i);
        if ((byte & 0x80U) == 0) {
            bytes_.remove_prefix(i + 1);
            *value = number;
            return true;
        }
    }
    return false;
}

bool spotlight_cursor::take(quint64 length, std::string_view *taken)
{
    if (length > bytes_.size())
        return false;
    *taken = bytes_.substr(0, length);
    bytes_.remove_prefix(length);
    return true;
}

bool spotlight_cursor::take_terminated(std::string_view *text)
{
    const size_t end = bytes_.find('\0');
    if (end == std::string_view::npos)
        return false;
    *text = bytes_.substr(0, end);
    bytes_.remove_prefix(end + 1);
    return true;
}

quint32 little_endian_u32(std::string_view bytes, quint64 offset)
{
    return qFromLittleEndian<quint32>(bytes.data() + offset);
}

quint64 little_endian_u64(std::string_view bytes, quint64 offset)
{
    return qFromLittleEndian<quint64>(bytes.data() + offset);
}

} // namespace formats
