#include "image_gps.h"

#include "exif_gps_reader.h"
#include "exif_locator.h"
#include "metered_byte_source.h"

namespace platform {

namespace {

constexpr qint64 max_bytes_read = 64LL * 1024 * 1024;

} // namespace

gps_position read_image_gps(byte_source &file)
{
    metered_byte_source metered(file, max_bytes_read);
    const std::unique_ptr<byte_source> block = find_exif_block(metered);
    return block ? read_exif_gps(*block) : gps_position();
}

} // namespace platform
