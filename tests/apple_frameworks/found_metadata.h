// What the portable platform finds out about the files of one volume. With it an extraction on the
// stand-ins has as much to tell as one on the portable platform.
#pragma once

#include "platform/image_properties.h"
#include "platform/spotlight_value.h"

#include <memory>

namespace stand_ins {

class found_file
{
public:
    virtual ~found_file() = default;
    virtual std::optional<platform::spotlight_value> attribute(const QString &name) = 0;
};

// Null unless the path leads to a file of the volume that the environment names: in
// STAND_IN_VOLUME, as the root of an examined source.
std::unique_ptr<found_file> find_file(const QString &path);
// Empty in the same cases.
platform::gps_position find_position(const QString &path);

} // namespace stand_ins
