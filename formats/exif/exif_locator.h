// Finds the block of EXIF data in an image, by content and never by suffix: JPEG, TIFF and the raw
// formats built on it, PNG, WebP, HEIF and AVIF.
#pragma once

#include "evidence/files/byte_source.h"

#include <memory>

namespace formats {

// The block, which starts with its TIFF header and counts its offsets from there. Null when the
// file is no such image, is damaged on the way to the block, or has none. `file` must outlive the
// result.
[[nodiscard]] std::unique_ptr<evidence::byte_source> find_exif_block(evidence::byte_source &file);

} // namespace formats
