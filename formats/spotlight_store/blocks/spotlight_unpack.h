// Unpacking of compressed pages. Nothing here trusts a size that stands in the packed bytes.
#pragma once

#include <QByteArray>

#include <string_view>

namespace formats {

// Each returns at most `most_bytes` of the plain bytes. Bytes that end too early give the part
// before the cut (zlib, frames) or nothing (a raw block, which cannot be cut). Damaged bytes give
// nothing (zlib, a raw block) or the frames before the damaged one.
[[nodiscard]] QByteArray unpack_zlib(std::string_view packed, int most_bytes);
[[nodiscard]] QByteArray unpack_lz4_frames(std::string_view packed, int most_bytes);
[[nodiscard]] QByteArray unpack_lz4_block(std::string_view packed, int most_bytes);

// Whether the bytes start as LZ4 frames do; a raw block has no mark of its own.
[[nodiscard]] bool starts_with_lz4_frame(std::string_view packed);

} // namespace formats
