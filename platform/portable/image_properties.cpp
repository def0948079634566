#include "platform/image_properties.h"

#include "formats/exif/image_gps.h"
#include "platform/portable/contained.h"

#include <utility>

namespace platform {

formats::gps_position read_gps_position(const evidence::resolved_path &place)
{
    evidence::evidence_file file;
    if (!place.file || !file.open(place.file))
        return {};
    return contained(formats::gps_position(), [&file] {
        evidence::evidence_byte_source bytes(std::move(file));
        return formats::read_image_gps(bytes);
    });
}

} // namespace platform
