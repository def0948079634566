// Steps through bytes of an index without ever leaving them. Every read either succeeds as a whole
// and moves on, or returns false and leaves the position where it was.
#pragma once

#include <QtGlobal>

#include <string_view>

namespace formats {

class spotlight_cursor
{
public:
    // The bytes must outlive the cursor and the views that it hands out.
    explicit spotlight_cursor(std::string_view bytes)
        : bytes_(bytes)
    {
    }

    [[nodiscard]] quint64 left() const { return bytes_.size(); }
    [[nodiscard]] std::string_view rest() const { return bytes_; }

    bool read_u8(quint8 *value);
    // Little-endian.
    bool read_u32(quint32 *value);
    bool read_u64(quint64 *value);
    // The integer of records and lists: as many leading one bits in the first byte as bytes follow,
    // most significant byte first.
    bool read_varint(quint64 *value)
    {
        if (!bytes_.empty() && (bytes_.front() & 0x80) == 0) {
            *value = static_cast<quint8>(bytes_.front());
            bytes_.remove_prefix(1);
            return true;
        }
        return read_long_varint(value);
    }
    // Seven bits a byte, least significant first; at most ten bytes, at most 64 bits.
    bool read_leb128(quint64 *value);
    bool take(quint64 length, std::string_view *taken);
    // The text up to the next NUL, which is stepped over but not part of it. False without a NUL.
    bool take_terminated(std::string_view *text);

private:
    bool read_long_varint(quint64 *value);

    std::string_view bytes_;
};

// Little-endian number at `offset`, which the caller has checked to lie inside, 4 or 8 bytes deep.
[[nodiscard]] quint32 little_endian_u32(std::string_view bytes, quint64 offset);
[[nodiscard]] quint64 little_endian_u64(std::string_view bytes, quint64 offset);

} // namespace formats
