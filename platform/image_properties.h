// GPS position of an image, as the image properties of its first picture hold it under "{GPS}".
#pragma once

#include "evidence/folders/source_boundary.h"
#include "formats/exif/gps_position.h"

namespace platform {

// Reads the position from the file held at `place`. Nothing is set when it is no image of a known
// kind, damaged, or has no position. Never decodes a picture; never throws.
[[nodiscard]] formats::gps_position read_gps_position(const evidence::resolved_path &place);

} // namespace platform
