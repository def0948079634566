#include "formats/exif/image_gps.h"

#include "formats/exif/exif_gps_reader.h"
#include "formats/exif/exif_locator.h"
#include "formats/exif/metered_byte_source.h"

namespace formats {

namespace {

constexpr qint64 max_bytes_read = 64LL * 1024 * 1024;

} // namespace

gps_position read_image_gps(evidence::byte_source &file)
{
    metered_byte_source metered(file, max_bytes_read);
    const std::unique_ptr<evidence::byte_source> block = find_exif_block(metered);
    return block ? read_exif_gps(*block) : gps_position();
}

} // namespace formats
