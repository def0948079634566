// The GPS position of an image, read from its bytes.
#pragma once

#include "byte_source.h"

#include "platform/image_properties.h"

namespace platform {

// As read_gps_position, for bytes wherever they are. Reads at most 64 MiB of them. Never throws.
[[nodiscard]] gps_position read_image_gps(byte_source &file);

} // namespace platform
