#include "platform/image_properties.h"

#include "platform/apple/contained.h"
#include "platform/apple/foundation_reader.h"

#include <ImageIO/ImageIO.h>

#include <cmath>

namespace platform {

namespace {

cf_ref<CFDictionaryRef> properties_of_first_picture(const QString &path)
{
    const cf_ref<CFStringRef> name = cfstring_of(path);
    NSURL *place = [NSURL fileURLWithPath:as_nsstring(name)];
    const cf_ref<CGImageSourceRef> image(
        CGImageSourceCreateWithURL(as_cf<CFURLRef>(place), nullptr));
    if (!image)
        return {};
    return cf_ref<CFDictionaryRef>(CGImageSourceCopyPropertiesAtIndex(image.get(), 0, nullptr));
}

std::optional<double> degrees(const formats::property_list_value &value)
{
    if (!value.is_number() || !std::isfinite(value.double_value()))
        return std::nullopt;
    return value.double_value();
}

formats::gps_position position_in(const cf_ref<CFDictionaryRef> &properties)
{
    const formats::property_list_value gps =
        value_of(properties.get()).value(QStringLiteral("{GPS}"));
    return {degrees(gps.value(QStringLiteral("Latitude"))),
            gps.value(QStringLiteral("LatitudeRef")).text(),
            degrees(gps.value(QStringLiteral("Longitude"))),
            gps.value(QStringLiteral("LongitudeRef")).text()};
}

} // namespace

formats::gps_position read_gps_position(const evidence::resolved_path &place)
{
    // ImageIO would wait for a FIFO and follow a link.
    if (!place.file || place.file->for_reading() < 0)
        return {};
    return contained_in_pool(formats::gps_position(), [&place] {
        return position_in(properties_of_first_picture(place.path));
    });
}

} // namespace platform
