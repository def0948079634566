// Spotlight and ImageIO. They answer what a test has scripted for a file.
#include "stand_ins.h"

#include <CoreServices/CoreServices.h>
#include <ImageIO/ImageIO.h>

// A Spotlight item or an image: an object of its own each time, as the system's are.
@interface known_file : NSObject {
    NSDictionary *scripted_;
}
- (id)initWithScript:(NSDictionary *)scripted;
- (NSDictionary *)scripted;
@end

@implementation known_file
- (id)initWithScript:(NSDictionary *)scripted
{
    self = [super init];
    scripted_ = [scripted retain];
    return self;
}
- (void)dealloc
{
    [scripted_ release];
    [super dealloc];
}
- (NSDictionary *)scripted
{
    return scripted_;
}
@end

namespace {

template <typename cf_pointer> NSObject *object_of(cf_pointer object)
{
    const void *address = object;
    return static_cast<NSObject *>(const_cast<void *>(address));
}

NSDictionary *script_of(NSObject *file)
{
    return [static_cast<known_file *>(file) scripted];
}

// Null for a file that nothing is scripted for.
void *hand_out_file(NSDictionary *scripted, const char *function)
{
    if (scripted == nil)
        return nullptr;
    known_file *file = [[known_file alloc] initWithScript:scripted];
    const void *owned = stand_ins::hand_out(file, function);
    [file release];
    return const_cast<void *>(owned);
}

} // namespace

MDItemRef MDItemCreate(CFAllocatorRef /*allocator*/, CFStringRef path)
{
    stand_ins::enter("MDItemCreate");
    NSString *name = static_cast<NSString *>(object_of(path));
    return static_cast<MDItemRef>(hand_out_file(stand_ins::attributes_of(name), "MDItemCreate"));
}

CFTypeRef MDItemCopyAttribute(MDItemRef item, CFStringRef name)
{
    stand_ins::enter("MDItemCopyAttribute");
    NSString *wanted = static_cast<NSString *>(object_of(name));
    return stand_ins::hand_out([script_of(object_of(item)) objectForKey:wanted],
                               "MDItemCopyAttribute");
}

CGImageSourceRef CGImageSourceCreateWithURL(CFURLRef place, CFDictionaryRef /*options*/)
{
    stand_ins::enter("CGImageSourceCreateWithURL");
    NSString *path = [static_cast<NSURL *>(object_of(place)) path];
    return static_cast<CGImageSourceRef>(
        hand_out_file(stand_ins::image_properties_of(path), "CGImageSourceCreateWithURL"));
}

CFDictionaryRef CGImageSourceCopyPropertiesAtIndex(CGImageSourceRef image, size_t index,
                                                   CFDictionaryRef /*options*/)
{
    stand_ins::enter("CGImageSourceCopyPropertiesAtIndex");
    if (index != 0)
        return nullptr;
    return static_cast<CFDictionaryRef>(
        stand_ins::hand_out(script_of(object_of(image)), "CGImageSourceCopyPropertiesAtIndex"));
}
