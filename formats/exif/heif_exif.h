// The EXIF data of a HEIF or AVIF image. No picture is decoded.
#pragma once

#include "evidence/files/byte_source.h"

#include <memory>

namespace formats {

// The EXIF block that describes the primary image, from its TIFF header on; of several that of the
// item with the lowest number. Null when the file is of another brand, or damaged on the way to the
// block, or has none of at most 16 MiB that lies wholly in the file. What else is missing of the
// file does not matter. `file` must outlive the result.
[[nodiscard]] std::unique_ptr<evidence::byte_source> heif_exif_block(evidence::byte_source &file);

} // namespace formats
