#include "formats/property_list/binary/binary_list_trailer.h"

namespace formats {

namespace {

// What the trailer holds, at these places of it.
constexpr quint64 offset_size_place = 6;
constexpr quint64 reference_size_place = 7;
constexpr quint64 object_count_place = 8;
constexpr quint64 top_object_place = 16;
constexpr quint64 table_offset_place = 24;

} // namespace

std::optional<binary_list_trailer> trailer_of(const QByteArray &binary_list)
{
    const auto size = static_cast<quint64>(binary_list.size());
    if (size < binary_list_header_bytes + binary_list_trailer_bytes)
        return std::nullopt;
    const quint64 table_end = size - binary_list_trailer_bytes;
    const uchar *at = reinterpret_cast<const uchar *>(binary_list.constData()) + table_end;
    binary_list_trailer trailer;
    trailer.offset_bytes = at[offset_size_place];
    trailer.reference_bytes = at[reference_size_place];
    trailer.object_count = big_endian_number(at + object_count_place, 8);
    trailer.top_object = big_endian_number(at + top_object_place, 8);
    trailer.table_offset = big_endian_number(at + table_offset_place, 8);
    const bool fits =
        trailer.offset_bytes >= 1 && trailer.offset_bytes <= 8 && trailer.reference_bytes >= 1 &&
        trailer.reference_bytes <= 8 && trailer.table_offset <= table_end &&
        trailer.top_object < trailer.object_count &&
        trailer.object_count <= (table_end - trailer.table_offset) / trailer.offset_bytes;
    return fits ? std::optional(trailer) : std::nullopt;
}

} // namespace formats
