// Where a picture was taken.
#pragma once

#include <QString>

#include <optional>

namespace formats {

// Absolute values in degrees; the hemisphere stands in the reference texts ("N", "S", "E", "W" as
// stored, null when the image has none). A value that is missing or not finite is nullopt.
struct gps_position
{
    std::optional<double> latitude;
    QString latitude_reference;
    std::optional<double> longitude;
    QString longitude_reference;
};

} // namespace formats
