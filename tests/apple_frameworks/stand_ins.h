// What the stand-ins for Apple's frameworks answer for a file, and how they hand out objects.
#pragma once

#include "stand_in_control.h"

#import <Foundation/Foundation.h>

namespace stand_ins {

// Not the platform's own pool: that one is tested.
class local_pool
{
public:
    local_pool() = default;
    ~local_pool() { [pool_ drain]; }
    local_pool(const local_pool &) = delete;
    local_pool &operator=(const local_pool &) = delete;

private:
    NSAutoreleasePool *pool_ = [[NSAutoreleasePool alloc] init];
};

// Spotlight attributes of the file at that path, by their public names.
void set_attributes(NSString *path, NSDictionary *attributes);
// Properties of the first picture of the file at that path.
void set_image_properties(NSString *path, NSDictionary *properties);
NSDictionary *attributes_of(NSString *path);
NSDictionary *image_properties_of(NSString *path);

// At the start of each function that stands in.
void enter(const char *function);
// The object, which its caller now has to release. Null stays null.
const void *hand_out(NSObject *object, const char *function);

} // namespace stand_ins
