// Builds blocks of EXIF data with a position, and small images of each kind that hold such a block.
// Fields can be forged.
#pragma once

#include <QByteArray>
#include <QtEndian>

#include <array>
#include <utility>
#include <vector>

using rational = std::pair<quint32, quint32>;

// A block with two directories. The first refers to the second, the GPS directory.
class exif_builder
{
public:
    explicit exif_builder(bool is_big_endian = true)
        : is_big_endian_(is_big_endian)
    {
    }

    // Put before the first directory, as in a TIFF file with its directories at the end.
    int filler_bytes = 0;
    quint16 pointer_type = 4;
    quint32 pointer_count = 1;
    quint32 pointer_shift = 0;
    quint16 magic = 42;
    int forged_first_offset = -1;

    exif_builder &reference(quint16 tag, const QByteArray &text, quint16 type = 2)
    {
        return field(tag, type, static_cast<quint32>(text.size()), text);
    }
    exif_builder &coordinate(quint16 tag, const std::vector<rational> &parts, quint16 type = 5)
    {
        QByteArray value;
        for (const auto &[numerator, denominator] : parts)
            value += number(numerator) + number(denominator);
        return field(tag, type, static_cast<quint32>(parts.size()), value);
    }
    exif_builder &field(quint16 tag, quint16 type, quint32 count, const QByteArray &value)
    {
        fields_.push_back({tag, type, count, value});
        return *this;
    }

    [[nodiscard]] QByteArray block() const
    {
        const quint32 first = 8 + static_cast<quint32>(filler_bytes);
        const quint32 gps = first + 2 + 12 + 4;
        const auto values = gps + 2 + 12 * static_cast<quint32>(fields_.size()) + 4;
        QByteArray bytes =
            (is_big_endian_ ? "MM" : "II") + number(magic) +
            number(forged_first_offset < 0 ? first : static_cast<quint32>(forged_first_offset)) +
            QByteArray(filler_bytes, '\0');
        bytes += number(quint16{1}) + number(quint16{0x8825}) + number(pointer_type) +
                 number(pointer_count) + number(gps + pointer_shift) + number(quint32{0});
        bytes += number(static_cast<quint16>(fields_.size()));
        QByteArray far;
        for (const gps_field &one : fields_) {
            bytes += number(one.tag) + number(one.type) + number(one.count);
            if (one.value.size() <= 4) {
                bytes += one.value.leftJustified(4, '\0');
                continue;
            }
            bytes += number(values + static_cast<quint32>(far.size()));
            far += one.value;
        }
        return bytes + number(quint32{0}) + far;
    }

    template <typename Number> [[nodiscard]] QByteArray number(Number value) const
    {
        QByteArray bytes(sizeof value, '\0');
        if (is_big_endian_)
            qToBigEndian(value, bytes.data());
        else
            qToLittleEndian(value, bytes.data());
        return bytes;
    }

private:
    struct gps_field
    {
        quint16 tag;
        quint16 type;
        quint32 count;
        QByteArray value;
    };

    bool is_big_endian_;
    std::vector<gps_field> fields_;
};

namespace image_builder {

inline QByteArray be16(int value)
{
    QByteArray bytes(2, '\0');
    qToBigEndian(static_cast<quint16>(value), bytes.data());
    return bytes;
}

inline QByteArray be32(qint64 value)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(static_cast<quint32>(value), bytes.data());
    return bytes;
}

inline QByteArray le32(qint64 value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(static_cast<quint32>(value), bytes.data());
    return bytes;
}

inline QByteArray exif_prefix()
{
    return QByteArray("Exif\0\0", 6);
}

inline QByteArray jpeg_segment(char marker, const QByteArray &content)
{
    return QByteArray("\xff") + marker + be16(content.size() + 2) + content;
}

// A JPEG with another application segment in front, and fill bytes.
inline QByteArray jpeg(const QByteArray &block)
{
    return QByteArray("\xff\xd8") + jpeg_segment('\xe0', "JFIF") +
           jpeg_segment('\xe1', "http://x") + "\xff\xff\xff" +
           jpeg_segment('\xe1', exif_prefix() + block) + jpeg_segment('\xda', "scan") + "\xff\xd9";
}

inline QByteArray png_chunk(const char *type, const QByteArray &content)
{
    return be32(content.size()) + type + content + QByteArray(4, '\0');
}

// A PNG with its EXIF data after the picture.
inline QByteArray png_of(const QByteArray &picture, const QByteArray &block)
{
    return "\x89PNG\r\n\x1a\n" + png_chunk("IHDR", QByteArray(13, '\1')) +
           png_chunk("IDAT", picture) + png_chunk("eXIf", block) + png_chunk("IEND", {});
}

inline QByteArray png(const QByteArray &block)
{
    return png_of("picture", block);
}

inline QByteArray webp_chunk(const char *type, const QByteArray &content)
{
    return type + le32(content.size()) + content + QByteArray(content.size() % 2, '\0');
}

inline QByteArray webp(const QByteArray &block)
{
    const QByteArray chunks = webp_chunk("VP8X", QByteArray(10, '\0')) + webp_chunk("VP8 ", "odd") +
                              webp_chunk("EXIF", block);
    return "RIFF" + le32(chunks.size() + 4) + "WEBP" + chunks;
}

inline QByteArray box(const char *type, const QByteArray &content)
{
    return be32(content.size() + 8) + type + content;
}

inline QByteArray full_box(const char *type, const QByteArray &content, int version = 0)
{
    return box(type, QByteArray(1, static_cast<char>(version)) + QByteArray(3, '\0') + content);
}

// A HEIF image: item 1 is a picture that nobody decodes, item 2 the EXIF data of another picture,
// item 3 its own.
struct heif_builder
{
    const char *major_brand = "heic";
    QByteArray prefix = be32(6) + exif_prefix(); // of the EXIF item
    QByteArray picture = "dummy picture";        // behind the EXIF data
    qint64 forged_exif_length = -1;
    bool is_wide = false;      // numbers of items in four bytes, offsets in eight
    bool in_item_data = false; // EXIF data in two pieces inside of "meta"

    [[nodiscard]] QByteArray file(const QByteArray &block) const
    {
        const QByteArray exif = prefix + block;
        const QByteArray type =
            box("ftyp", QByteArray(major_brand) + be32(0) + "mif1" + major_brand);
        const int data = type.size() + meta(0, exif).size() + 8;
        return type + meta(data, exif) + box("mdat", (in_item_data ? "" : exif) + picture);
    }

private:
    [[nodiscard]] QByteArray id(int number) const { return is_wide ? be32(number) : be16(number); }
    [[nodiscard]] QByteArray offset(qint64 number) const
    {
        return (is_wide ? be32(0) : QByteArray()) + be32(number);
    }
    [[nodiscard]] QByteArray item(int number, const char *type) const
    {
        return full_box("infe", id(number) + be16(0) + type + QByteArray(1, '\0'), 2 + is_wide);
    }
    [[nodiscard]] QByteArray location(int number, bool inside, const QByteArray &extents) const
    {
        return id(number) + be16(inside) + be16(0) + offset(0) +
               be16(extents.size() / offset(0).size() / 2) + extents;
    }
    [[nodiscard]] QByteArray reference(int from, int to) const
    {
        return box("cdsc", id(from) + be16(1) + id(to));
    }
    [[nodiscard]] QByteArray meta(qint64 data, const QByteArray &exif) const
    {
        const qint64 length = forged_exif_length < 0 ? exif.size() : forged_exif_length;
        const QByteArray own = in_item_data ? offset(0) + offset(9) + offset(9) + offset(length - 9)
                                            : offset(data) + offset(length);
        const QByteArray other = offset(data) + offset(4);
        const QByteArray sizes(is_wide ? "\x88\x80" : "\x44\x40", 2);
        return full_box(
            "meta",
            full_box("hdlr", be32(0) + "pict" + QByteArray(13, '\0')) +
                full_box("pitm", id(1), is_wide) +
                full_box("iloc",
                         sizes + id(3) + location(1, false, other) + location(2, false, other) +
                             location(3, in_item_data, own),
                         1 + is_wide) +
                full_box("iinf", be16(3) + item(1, "hvc1") + item(2, "Exif") + item(3, "Exif")) +
                full_box("iref", reference(2, 9) + reference(3, 1), is_wide) +
                box("idat", in_item_data ? exif : QByteArray()));
    }
};

} // namespace image_builder
