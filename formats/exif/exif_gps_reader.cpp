#include "formats/exif/exif_gps_reader.h"

#include <QtEndian>

#include <algorithm>
#include <cmath>

namespace formats {

namespace {

constexpr int header_bytes = 8;
constexpr int entry_bytes = 12;
constexpr int inline_bytes = 4;
constexpr quint16 tiff_magic = 42;

constexpr quint16 gps_directory_tag = 0x8825;
constexpr quint16 latitude_reference_tag = 1;
constexpr quint16 latitude_tag = 2;
constexpr quint16 longitude_reference_tag = 3;
constexpr quint16 longitude_tag = 4;

constexpr quint16 text_type = 2;
constexpr quint16 long_type = 4;
constexpr quint16 rational_type = 5;
constexpr quint16 signed_rational_type = 10;
constexpr quint16 directory_type = 13;

constexpr int rational_bytes = 8;
constexpr int max_reference_bytes = 16;

struct directory_entry
{
    quint16 type = 0;
    quint32 count = 0;
    QByteArray value; // four bytes: the value, or where it lies
};

class exif_gps_reader
{
public:
    explicit exif_gps_reader(evidence::byte_source &block)
        : block_(block)
    {
    }

    gps_position position()
    {
        const QByteArray header = block_.read(0, header_bytes);
        if (header.size() < header_bytes || !read_byte_order(header))
            return {};
        const QByteArray first = directory_at(number<quint32>(header, 4));
        const std::optional<directory_entry> pointer = entry_of(first, gps_directory_tag);
        if (!pointer || pointer->count != 1 ||
            (pointer->type != long_type && pointer->type != directory_type))
            return {};
        const QByteArray gps = directory_at(number<quint32>(pointer->value, 0));
        gps_position position;
        position.latitude = degrees(entry_of(gps, latitude_tag));
        position.latitude_reference = reference(entry_of(gps, latitude_reference_tag));
        position.longitude = degrees(entry_of(gps, longitude_tag));
        position.longitude_reference = reference(entry_of(gps, longitude_reference_tag));
        return position;
    }

private:
    bool read_byte_order(const QByteArray &header)
    {
        is_big_endian_ = header.startsWith("MM");
        return (is_big_endian_ || header.startsWith("II")) &&
               number<quint16>(header, 2) == tiff_magic;
    }

    // The caller has checked that the number lies inside.
    template <typename Number>
    [[nodiscard]] Number number(const QByteArray &bytes, int offset) const
    {
        const char *const at = bytes.constData() + offset;
        return is_big_endian_ ? qFromBigEndian<Number>(at) : qFromLittleEndian<Number>(at);
    }

    // The entries of a directory; none when it does not lie in the block as a whole.
    [[nodiscard]] QByteArray directory_at(qint64 offset)
    {
        const QByteArray count_bytes = block_.read(offset, 2);
        if (offset < header_bytes || count_bytes.size() < 2)
            return {};
        const int length = number<quint16>(count_bytes, 0) * entry_bytes;
        // Six more bytes: the count, and the offset of a next directory.
        if (offset > block_.size() - length - 6)
            return {};
        QByteArray entries = block_.read(offset + 2, length);
        return entries.size() == length ? entries : QByteArray();
    }

    [[nodiscard]] std::optional<directory_entry> entry_of(const QByteArray &directory,
                                                          quint16 tag) const
    {
        for (int at = 0; at + entry_bytes <= directory.size(); at += entry_bytes) {
            if (number<quint16>(directory, at) == tag) {
                return directory_entry{number<quint16>(directory, at + 2),
                                       number<quint32>(directory, at + 4),
                                       directory.mid(at + 8, inline_bytes)};
            }
        }
        return std::nullopt;
    }

    // The first bytes of a value, at most `most`; none when it does not lie in the block whole.
    [[nodiscard]] QByteArray value_bytes(const directory_entry &entry, int unit_bytes, int most)
    {
        const qint64 length = qint64{entry.count} * unit_bytes;
        const int wanted = static_cast<int>(std::min<qint64>(length, most));
        if (length <= inline_bytes)
            return entry.value.left(wanted);
        const qint64 offset = number<quint32>(entry.value, 0);
        if (offset > block_.size() - length)
            return {};
        QByteArray bytes = block_.read(offset, wanted);
        return bytes.size() == wanted ? bytes : QByteArray();
    }

    [[nodiscard]] QString reference(const std::optional<directory_entry> &entry)
    {
        if (!entry || entry->type != text_type)
            return {};
        QByteArray text = value_bytes(*entry, 1, max_reference_bytes);
        const int end = text.indexOf('\0');
        text.truncate(end < 0 ? text.size() : end);
        return text.isEmpty() ? QString() : QString::fromLatin1(text);
    }

    // Without its sign, which the reference alone gives. A part with denominator 0 is infinite or
    // no number at all.
    [[nodiscard]] double part(const QByteArray &rationals, int index, bool is_signed) const
    {
        const int at = index * rational_bytes;
        if (is_signed) {
            return std::abs(static_cast<double>(number<qint32>(rationals, at)) /
                            static_cast<double>(number<qint32>(rationals, at + 4)));
        }
        return static_cast<double>(number<quint32>(rationals, at)) /
               static_cast<double>(number<quint32>(rationals, at + 4));
    }

    [[nodiscard]] std::optional<double> degrees(const std::optional<directory_entry> &entry)
    {
        if (!entry || (entry->type != rational_type && entry->type != signed_rational_type))
            return std::nullopt;
        constexpr double units_per_degree[] = {1.0, 60.0, 3600.0};
        const QByteArray rationals = value_bytes(*entry, rational_bytes, 3 * rational_bytes);
        const int parts = rationals.size() / rational_bytes;
        const bool is_signed = entry->type == signed_rational_type;
        std::optional<double> sum;
        for (int i = 0; i < parts; ++i) {
            const double value = part(rationals, i, is_signed);
            if (i == 0 && !std::isfinite(value))
                return std::nullopt;
            // Cameras leave 0/0 where they have no minutes or seconds.
            if (std::isfinite(value))
                sum = sum.value_or(0.0) + value / units_per_degree[i];
        }
        return sum;
    }

    evidence::byte_source &block_;
    bool is_big_endian_ = false;
};

} // namespace

gps_position read_exif_gps(evidence::byte_source &block)
{
    return exif_gps_reader(block).position();
}

} // namespace formats
