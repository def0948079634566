// The last bytes of a binary property list: where its objects are, and how numbers are written.
#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <optional>

namespace formats {

constexpr quint64 binary_list_header_bytes = 8;
constexpr quint64 binary_list_trailer_bytes = 32;

struct binary_list_trailer
{
    quint64 offset_bytes = 0;    // of each entry of the offset table, 1 to 8
    quint64 reference_bytes = 0; // of each reference to an object, 1 to 8
    quint64 object_count = 0;
    quint64 top_object = 0;   // below object_count
    quint64 table_offset = 0; // of the offset table, which ends before the trailer
};

// A big-endian number of up to eight bytes.
[[nodiscard]] inline quint64 big_endian_number(const uchar *at, quint64 bytes)
{
    quint64 number = 0;
    for (quint64 index = 0; index < bytes; ++index)
        number = number << 8 | at[index];
    return number;
}

// Nullopt when the bytes are too few, or when the numbers do not fit them.
[[nodiscard]] std::optional<binary_list_trailer> trailer_of(const QByteArray &binary_list);

} // namespace formats
