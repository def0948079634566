// GPS position of an image, as the image properties of its first picture hold it under "{GPS}".
#pragma once

#include <QString>

#include <optional>

namespace platform {

// Absolute values in degrees; the hemisphere stands in the reference texts ("N", "S", "E", "W" as
// stored, null when the image has none). A value that is missing or not finite is nullopt.
struct gps_position
{
    std::optional<double> latitude;
    QString latitude_reference;
    std::optional<double> longitude;
    QString longitude_reference;
};

// Reads the position from the file at `path` (no link in the last component is followed). Nothing
// is set when the file is missing, no image of a known kind, damaged, or has no position. Never
// decodes a picture; never throws.
[[nodiscard]] gps_position read_gps_position(const QString &path);

} // namespace platform
