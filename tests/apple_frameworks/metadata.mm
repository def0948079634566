// Spotlight and ImageIO, which answer from what the test has scripted.
#include "stand_ins.h"

#include <CoreServices/CoreServices.h>
#include <ImageIO/ImageIO.h>

// A Spotlight item or an image: what is known of one file.
@interface scripted_file : NSObject {
    NSDictionary *known_;
}
- (id)initWithDictionary:(NSDictionary *)known;
- (NSDictionary *)known;
@end

@implementation scripted_file
- (id)initWithDictionary:(NSDictionary *)known {
    known_ = [known retain];
    return self;
}
- (void)dealloc {
    [known_ release];
    [super dealloc];
}
- (NSDictionary *)known {
    return known_;
}
@end

namespace {

template <typename cf_pointer> NSObject *object_of(cf_pointer object) {
    const void *address = object;
    return static_cast<NSObject *>(const_cast<void *>(address));
}

void *hand_out_file(NSDictionary *known, const char *function) {
    if (known == nil)
        return nullptr;
    scripted_file *file = [[scripted_file alloc] initWithDictionary:known];
    const void *owned = stand_ins::hand_out(file, function);
    [file release];
    return const_cast<void *>(owned);
}

NSDictionary *known_of(NSObject *file) { return [static_cast<scripted_file *>(file) known]; }

} // namespace

MDItemRef MDItemCreate(CFAllocatorRef /*allocator*/, CFStringRef path) {
    stand_ins::enter("MDItemCreate");
    NSDictionary *known = stand_ins::attributes_of(static_cast<NSString *>(object_of(path)));
    return static_cast<MDItemRef>(hand_out_file(known, "MDItemCreate"));
}

CFTypeRef MDItemCopyAttribute(MDItemRef item, CFStringRef name) {
    stand_ins::enter("MDItemCopyAttribute");
    NSObject *value =
        [known_of(object_of(item)) objectForKey:static_cast<NSString *>(object_of(name))];
    return stand_ins::hand_out(value, "MDItemCopyAttribute");
}

CGImageSourceRef CGImageSourceCreateWithURL(CFURLRef place, CFDictionaryRef /*options*/) {
    stand_ins::enter("CGImageSourceCreateWithURL");
    NSURL *url = static_cast<NSURL *>(object_of(place));
    return static_cast<CGImageSourceRef>(
        hand_out_file(stand_ins::image_properties_of([url path]), "CGImageSourceCreateWithURL"));
}

CFDictionaryRef CGImageSourceCopyPropertiesAtIndex(CGImageSourceRef image, size_t index,
                                                   CFDictionaryRef /*options*/) {
    stand_ins::enter("CGImageSourceCopyPropertiesAtIndex");
    if (index != 0)
        return nullptr;
    return static_cast<CFDictionaryRef>(
        stand_ins::hand_out(known_of(object_of(image)), "CGImageSourceCopyPropertiesAtIndex"));
}
