// The GPS position of an image, read from its bytes.
#pragma once

#include "evidence/files/byte_source.h"

#include "formats/exif/gps_position.h"

namespace formats {

// As read_gps_position, for bytes wherever they are. Reads at most 64 MiB of them. Never throws.
[[nodiscard]] gps_position read_image_gps(evidence::byte_source &file);

} // namespace formats
