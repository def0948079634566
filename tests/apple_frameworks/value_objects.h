// Metadata values as the objects that Spotlight and ImageIO hand out.
#pragma once

#import <Foundation/Foundation.h>

#include "platform/image_properties.h"
#include "platform/spotlight_value.h"

namespace stand_ins {

// Autoreleased.
NSObject *object_of(const platform::spotlight_value &value);
// The properties of an image with that position; empty without one.
NSDictionary *properties_of(const platform::gps_position &position);

// The other way round, for what object_of makes.
platform::spotlight_value value_of(NSObject *object);

} // namespace stand_ins
