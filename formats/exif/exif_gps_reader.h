// Reads the position from a block of EXIF data: the GPS directory that the first directory names.
#pragma once

#include "evidence/files/byte_source.h"

#include "formats/exif/gps_position.h"

namespace formats {

// `block` starts with the TIFF header. Two directories are followed, so that no chain can loop; a
// value that does not lie in the block, or has another type than its tag asks for, is missing.
[[nodiscard]] gps_position read_exif_gps(evidence::byte_source &block);

} // namespace formats
