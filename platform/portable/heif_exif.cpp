#include "heif_exif.h"

#include <QtEndian>

#include <libheif/heif.h>

#include <algorithm>
#include <cstring>

namespace platform {

namespace {

constexpr qint64 max_file_bytes = 512LL * 1024 * 1024;
constexpr size_t max_metadata_bytes = size_t{16} * 1024 * 1024;
// What the library may take in of one file, pictures included; many items can name the same bytes.
constexpr qint64 max_handed_bytes = 256LL * 1024 * 1024;
constexpr int max_brand_bytes = 1024; // of the box that names the brands; it holds four each
constexpr int first_brand_offset = 8;
constexpr int version_offset = 12; // stands between the major brand and the compatible ones
constexpr int offset_field_bytes = 4;
constexpr int tiff_header_bytes = 8;
constexpr char exif_type[] = "Exif";

constexpr const char *image_brands[] = {"heic", "heix", "heim", "heis", "hevc", "hevx", "hevm",
                                        "hevs", "mif1", "mif2", "msf1", "avif", "avis"};

bool is_image_brand(const QByteArray &brand)
{
    return std::any_of(std::begin(image_brands), std::end(image_brands),
                       [&](const char *known) { return brand == known; });
}

// Videos are built from the same boxes, but name other brands.
bool names_image_brand(byte_source &file)
{
    const QByteArray box = file.read(0, max_brand_bytes);
    if (box.size() < version_offset)
        return false;
    const qint64 announced = qFromBigEndian<quint32>(box.constData());
    const int end = static_cast<int>(std::min<qint64>(announced, box.size()));
    for (int at = first_brand_offset; at + 4 <= end; at += 4) {
        if (at != version_offset && is_image_brand(box.mid(at, 4)))
            return true;
    }
    return false;
}

// What the library needs to read through a byte_source. It takes in the data of every item,
// pictures too, and may end the process when a read or a seek fails; so neither ever does, and what
// cannot be had is zeros, which no EXIF data start with.
struct reading
{
    byte_source &file;
    qint64 position = 0;
    qint64 left_bytes = max_handed_bytes;
};

int64_t position_of(void *userdata)
{
    return static_cast<reading *>(userdata)->position;
}

int read_bytes(void *data, size_t size, void *userdata)
{
    auto *const state = static_cast<reading *>(userdata);
    if (size == 0) // asked for with no place to write to
        return 0;
    const auto length = static_cast<qint64>(size);
    // Larger data are a picture's.
    const QByteArray bytes =
        size <= max_metadata_bytes ? state->file.read(state->position, length) : QByteArray();
    if (bytes.size() == length)
        std::memcpy(data, bytes.constData(), size);
    else
        std::memset(data, 0, size);
    state->position += length;
    state->left_bytes -= length;
    return 0;
}

int seek_to(int64_t position, void *userdata)
{
    static_cast<reading *>(userdata)->position = position;
    return 0;
}

// The one way of refusing that the library copes with.
heif_reader_grow_status wait_for_size(int64_t target_size, void *userdata)
{
    const auto *const state = static_cast<const reading *>(userdata);
    return target_size <= state->file.size() && state->left_bytes > 0
               ? heif_reader_grow_status_size_reached
               : heif_reader_grow_status_size_beyond_eof;
}

struct context_deleter
{
    void operator()(heif_context *context) const { heif_context_free(context); }
};

struct handle_deleter
{
    void operator()(heif_image_handle *handle) const { heif_image_handle_release(handle); }
};

QByteArray primary_image_exif(byte_source &file)
{
    const std::unique_ptr<heif_context, context_deleter> context(heif_context_alloc());
    if (!context)
        return {};
    heif_reader functions = {1, position_of, read_bytes, seek_to, wait_for_size};
    reading state{file};
    if (heif_context_read_from_reader(context.get(), &functions, &state, nullptr).code !=
        heif_error_Ok)
        return {};
    heif_image_handle *opened = nullptr;
    if (heif_context_get_primary_image_handle(context.get(), &opened).code != heif_error_Ok)
        return {};
    const std::unique_ptr<heif_image_handle, handle_deleter> handle(opened);
    heif_item_id id = 0;
    if (heif_image_handle_get_list_of_metadata_block_IDs(handle.get(), exif_type, &id, 1) < 1)
        return {};
    const size_t size = heif_image_handle_get_metadata_size(handle.get(), id);
    if (size == 0 || size > max_metadata_bytes)
        return {};
    QByteArray metadata(static_cast<int>(size), '\0');
    if (heif_image_handle_get_metadata(handle.get(), id, metadata.data()).code != heif_error_Ok)
        return {};
    return metadata;
}

} // namespace

std::unique_ptr<byte_source> heif_exif_block(byte_source &file)
{
    if (file.size() > max_file_bytes || !names_image_brand(file))
        return nullptr;
    QByteArray metadata;
    try {
        metadata = primary_image_exif(file);
    } catch (...) { // the library allocates what the file asks for
        return nullptr;
    }
    if (metadata.size() < offset_field_bytes)
        return nullptr;
    const qint64 start = offset_field_bytes + qint64{qFromBigEndian<quint32>(metadata.constData())};
    if (start + tiff_header_bytes > metadata.size())
        return nullptr;
    return std::make_unique<memory_byte_source>(metadata.mid(static_cast<int>(start)));
}

} // namespace platform
