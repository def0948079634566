// Unpacking of compressed pages. Nothing here trusts a size that stands in the packed bytes.
#pragma once

#include <QByteArray>

#include <string_view>

namespace platform {

// Each returns at most `most_bytes` of the plain bytes. Bytes that end too early give what can be
// said for certain of them: the part before the cut (zlib, frames), nothing (a raw block, which
// cannot be cut). Damaged bytes give nothing for zlib and a raw block, and the frames before the
// damaged one for frames.
[[nodiscard]] QByteArray unpack_zlib(std::string_view packed, int most_bytes);
[[nodiscard]] QByteArray unpack_lz4_frames(std::string_view packed, int most_bytes);
[[nodiscard]] QByteArray unpack_lz4_block(std::string_view packed, int most_bytes);

// Whether the bytes start as LZ4 frames do; a raw block has no mark of its own.
[[nodiscard]] bool starts_with_lz4_frame(std::string_view packed);

} // namespace platform
