#include "formats/exif/exif_locator.h"

#include "formats/exif/byte_window.h"
#include "formats/exif/heif_exif.h"

#include <QtEndian>

#include <algorithm>

namespace formats {

namespace {

constexpr int max_start_bytes = 12;

constexpr char exif_prefix[] = {'E', 'x', 'i', 'f', '\0', '\0'};
constexpr int exif_prefix_bytes = sizeof exif_prefix;

constexpr int max_jpeg_segments = 4096;
constexpr int fill_piece_bytes = 512;
constexpr quint8 application_1_marker = 0xe1;
constexpr quint8 scan_marker = 0xda;

constexpr int max_chunks = 65536;
constexpr int png_first_chunk = 8;
constexpr int png_frame_bytes = 12; // length, type and checksum
constexpr int webp_first_chunk = 12;
constexpr int webp_frame_bytes = 8; // type and length

QByteArray exact(evidence::byte_source &file, qint64 offset, int length)
{
    QByteArray bytes = file.read(offset, length);
    return bytes.size() == length ? bytes : QByteArray();
}

bool has_exif_prefix(evidence::byte_source &file, qint64 offset)
{
    return file.read(offset, exif_prefix_bytes) ==
           QByteArray::fromRawData(exif_prefix, exif_prefix_bytes);
}

std::unique_ptr<evidence::byte_source> window(evidence::byte_source &file, qint64 offset,
                                              qint64 length)
{
    return std::make_unique<byte_window>(file, offset, length);
}

// PNG and WebP name the block with or without the prefix that JPEG needs.
std::unique_ptr<evidence::byte_source> window_after_prefix(evidence::byte_source &file,
                                                           qint64 offset, qint64 length)
{
    if (length < exif_prefix_bytes || !has_exif_prefix(file, offset))
        return window(file, offset, length);
    return window(file, offset + exif_prefix_bytes, length - exif_prefix_bytes);
}

// Where the marker's own byte stands, after any number of fill bytes; -1 when there is no marker.
qint64 jpeg_marker_after(evidence::byte_source &file, qint64 at)
{
    if (exact(file, at, 1) != QByteArray(1, '\xff'))
        return -1;
    for (;;) {
        const QByteArray piece = file.read(at, fill_piece_bytes);
        if (piece.isEmpty())
            return -1;
        const auto *const found =
            std::find_if(piece.cbegin(), piece.cend(), [](char byte) { return byte != '\xff'; });
        at += found - piece.cbegin();
        if (found != piece.cend())
            return at;
    }
}

bool has_no_length(quint8 marker)
{
    return marker == 0x01 || (marker >= 0xd0 && marker <= 0xd9);
}

std::unique_ptr<evidence::byte_source> find_in_jpeg(evidence::byte_source &file)
{
    qint64 at = 2;
    for (int i = 0; i < max_jpeg_segments; ++i) {
        const qint64 marker_at = jpeg_marker_after(file, at);
        const QByteArray marker_byte = exact(file, marker_at, 1);
        if (marker_byte.isEmpty())
            return nullptr;
        const auto marker = static_cast<quint8>(marker_byte[0]);
        at = marker_at + 1;
        if (marker == scan_marker)
            return nullptr;
        if (has_no_length(marker))
            continue;
        const QByteArray length_bytes = exact(file, at, 2);
        if (length_bytes.isEmpty())
            return nullptr;
        const int length = qFromBigEndian<quint16>(length_bytes.constData());
        if (length < 2 || at + length > file.size())
            return nullptr;
        if (marker == application_1_marker && length >= 2 + exif_prefix_bytes &&
            has_exif_prefix(file, at + 2))
            return window(file, at + 2 + exif_prefix_bytes, length - 2 - exif_prefix_bytes);
        at += length;
    }
    return nullptr;
}

std::unique_ptr<evidence::byte_source> find_in_png(evidence::byte_source &file)
{
    qint64 at = png_first_chunk;
    for (int i = 0; i < max_chunks; ++i) {
        const QByteArray frame = exact(file, at, 8);
        if (frame.isEmpty())
            return nullptr;
        const qint64 length = qFromBigEndian<quint32>(frame.constData());
        const QByteArray type = frame.mid(4);
        if (length > file.size() - at - png_frame_bytes || type == "IEND")
            return nullptr;
        if (type == "eXIf")
            return window_after_prefix(file, at + 8, length);
        at += png_frame_bytes + length;
    }
    return nullptr;
}

std::unique_ptr<evidence::byte_source> find_in_webp(evidence::byte_source &file)
{
    const QByteArray start = exact(file, 0, webp_first_chunk);
    if (start.isEmpty())
        return nullptr;
    // What follows the announced end is not part of the image.
    const qint64 end = std::min<qint64>(
        file.size(), 8 + qint64{qFromLittleEndian<quint32>(start.constData() + 4)});
    qint64 at = webp_first_chunk;
    for (int i = 0; i < max_chunks; ++i) {
        const QByteArray frame = exact(file, at, webp_frame_bytes);
        if (frame.isEmpty())
            return nullptr;
        const qint64 length = qFromLittleEndian<quint32>(frame.constData() + 4);
        if (length > end - at - webp_frame_bytes)
            return nullptr;
        if (frame.startsWith("EXIF"))
            return window_after_prefix(file, at + webp_frame_bytes, length);
        at += webp_frame_bytes + length + length % 2;
    }
    return nullptr;
}

} // namespace

std::unique_ptr<evidence::byte_source> find_exif_block(evidence::byte_source &file)
{
    const QByteArray start = file.read(0, max_start_bytes);
    if (start.startsWith("\xff\xd8\xff"))
        return find_in_jpeg(file);
    if (start.startsWith(QByteArray("II*\0", 4)) || start.startsWith(QByteArray("MM\0*", 4)))
        return window(file, 0, file.size());
    if (start.startsWith("\x89PNG\r\n\x1a\n"))
        return find_in_png(file);
    if (start.startsWith("RIFF") && start.mid(8) == "WEBP")
        return find_in_webp(file);
    if (start.mid(4, 4) == "ftyp")
        return heif_exif_block(file);
    return nullptr;
}

} // namespace formats
