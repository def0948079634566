#include "platform/image_properties.h"

#include "image_gps.h"

#include <utility>

namespace platform {

gps_position read_gps_position(const QString &path)
{
    support::evidence_file file;
    if (!file.open(path))
        return {};
    evidence_byte_source bytes(std::move(file));
    return read_image_gps(bytes);
}

} // namespace platform
