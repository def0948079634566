// Finds the block of EXIF data in an image, by content and never by suffix: JPEG, TIFF and the raw
// formats built on it, PNG, WebP, HEIF and AVIF.
#pragma once

#include "byte_source.h"

#include <memory>

namespace platform {

// The block, which starts with its TIFF header and counts its offsets from there. Null when the
// file is no such image, is damaged on the way to the block, or has none. `file` must outlive the
// result.
[[nodiscard]] std::unique_ptr<byte_source> find_exif_block(byte_source &file);

} // namespace platform
