// Reads the position of an image of any kind.
#include "formats/exif/image_gps.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, size_t size)
{
    evidence::memory_byte_source bytes(
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size)));
    const formats::gps_position position = formats::read_image_gps(bytes);
    for (const auto &degrees : {position.latitude, position.longitude}) {
        if (degrees && !std::isfinite(*degrees))
            std::abort();
    }
    return 0;
}
