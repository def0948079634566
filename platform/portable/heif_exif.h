// The EXIF data of a HEIF or AVIF image. No picture is decoded.
#pragma once

#include "byte_source.h"

#include <memory>

namespace platform {

// The EXIF block of the primary image, from its TIFF header on. Null when the file is of another
// brand, larger than 512 MiB, damaged, or has no such block of at most 16 MiB. Never throws.
[[nodiscard]] std::unique_ptr<byte_source> heif_exif_block(byte_source &file);

} // namespace platform
