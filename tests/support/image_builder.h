// Builds blocks of EXIF data with a position, and the smallest images of each kind that hold one;
// fields can be forged.
#pragma once

#include <QByteArray>
#include <QtEndian>

#include <array>
#include <utility>
#include <vector>

using rational = std::pair<quint32, quint32>;

// A block with two directories: the one that names the GPS directory, and that one.
class exif_builder
{
public:
    explicit exif_builder(bool is_big_endian = true)
        : is_big_endian_(is_big_endian)
    {
    }

    // In front of the first directory, as in a TIFF file that has its directories at the end.
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

// A PNG that has its EXIF data behind the picture.
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

// A HEIF image: item 1 is a picture that nobody decodes, item 2 its EXIF data.
struct heif_builder
{
    const char *major_brand = "heic";
    QByteArray prefix = be32(6) + exif_prefix(); // of the EXIF item
    QByteArray picture = "dummy picture";
    qint64 forged_exif_length = -1;

    [[nodiscard]] QByteArray file(const QByteArray &block) const
    {
        const QByteArray exif = prefix + block;
        const QByteArray type =
            box("ftyp", QByteArray(major_brand) + be32(0) + "mif1" + major_brand);
        const QByteArray sized = meta(0, picture.size(), 0, exif.size());
        const int data = type.size() + sized.size() + 8;
        return type +
               meta(data, picture.size(), data + picture.size(),
                    forged_exif_length < 0 ? exif.size() : forged_exif_length) +
               box("mdat", picture + exif);
    }

private:
    static QByteArray item(int id, const char *type)
    {
        return full_box("infe", be16(id) + be16(0) + type + QByteArray(1, '\0'), 2);
    }
    static QByteArray location(int id, qint64 offset, qint64 length)
    {
        return be16(id) + be16(0) + be16(1) + be32(offset) + be32(length);
    }
    static QByteArray meta(qint64 picture, qint64 picture_length, qint64 exif, qint64 exif_length)
    {
        const QByteArray size = full_box("ispe", be32(16) + be32(16));
        const QByteArray decoder = box("hvcC", QByteArray(1, '\1') + QByteArray(22, '\0'));
        const QByteArray properties =
            box("iprp", box("ipco", decoder + size) +
                            full_box("ipma", be32(1) + be16(1) + QByteArray("\2\x81\2", 3)));
        return full_box("meta", full_box("hdlr", be32(0) + "pict" + QByteArray(13, '\0')) +
                                    full_box("pitm", be16(1)) +
                                    full_box("iloc", QByteArray("\x44\0", 2) + be16(2) +
                                                         location(1, picture, picture_length) +
                                                         location(2, exif, exif_length)) +
                                    full_box("iinf", be16(2) + item(1, "hvc1") + item(2, "Exif")) +
                                    properties +
                                    full_box("iref", box("cdsc", be16(2) + be16(1) + be16(1))));
    }
};

} // namespace image_builder
