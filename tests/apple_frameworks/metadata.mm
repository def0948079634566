// Spotlight and ImageIO. They answer from what a test has scripted for a file; for others from what
// is found on the volume.
#include "found_metadata.h"
#include "stand_ins.h"
#include "unit_text.h"
#include "value_objects.h"

#include <CoreServices/CoreServices.h>
#include <ImageIO/ImageIO.h>

// A Spotlight item or an image.
@interface known_file : NSObject {
    NSDictionary *scripted_;
    stand_ins::found_file *found_;
}
- (id)initWithScript:(NSDictionary *)scripted found:(std::unique_ptr<stand_ins::found_file>)found;
- (NSDictionary *)scripted;
- (NSObject *)attribute:(NSString *)name;
@end

@implementation known_file
- (id)initWithScript:(NSDictionary *)scripted found:(std::unique_ptr<stand_ins::found_file>)found {
    self = [super init];
    scripted_ = [scripted retain];
    found_ = found.release();
    return self;
}
- (void)dealloc {
    [scripted_ release];
    delete found_;
    [super dealloc];
}
- (NSDictionary *)scripted {
    return scripted_;
}
- (NSObject *)attribute:(NSString *)name {
    if (found_ == nullptr)
        return [scripted_ objectForKey:name];
    const auto value = found_->attribute(stand_ins::text_of(name));
    return value ? stand_ins::object_of(*value) : nil;
}
@end

namespace {

template <typename cf_pointer> NSObject *object_of(cf_pointer object) {
    const void *address = object;
    return static_cast<NSObject *>(const_cast<void *>(address));
}

known_file *file_of(NSObject *object) { return static_cast<known_file *>(object); }

void *hand_out_file(NSDictionary *scripted, std::unique_ptr<stand_ins::found_file> found,
                    const char *function) {
    known_file *file = [[known_file alloc] initWithScript:scripted found:std::move(found)];
    const void *owned = stand_ins::hand_out(file, function);
    [file release];
    return const_cast<void *>(owned);
}

} // namespace

MDItemRef MDItemCreate(CFAllocatorRef /*allocator*/, CFStringRef path) {
    stand_ins::enter("MDItemCreate");
    NSString *name = static_cast<NSString *>(object_of(path));
    NSDictionary *scripted = stand_ins::attributes_of(name);
    auto found = scripted != nil ? nullptr : stand_ins::find_file(stand_ins::text_of(name));
    if (scripted == nil && found == nullptr)
        return nullptr;
    return static_cast<MDItemRef>(hand_out_file(scripted, std::move(found), "MDItemCreate"));
}

CFTypeRef MDItemCopyAttribute(MDItemRef item, CFStringRef name) {
    stand_ins::enter("MDItemCopyAttribute");
    const stand_ins::local_pool pool;
    NSString *wanted = static_cast<NSString *>(object_of(name));
    return stand_ins::hand_out([file_of(object_of(item)) attribute:wanted], "MDItemCopyAttribute");
}

CGImageSourceRef CGImageSourceCreateWithURL(CFURLRef place, CFDictionaryRef /*options*/) {
    stand_ins::enter("CGImageSourceCreateWithURL");
    NSString *path = [static_cast<NSURL *>(object_of(place)) path];
    NSDictionary *scripted = stand_ins::image_properties_of(path);
    if (scripted == nil)
        scripted = stand_ins::properties_of(stand_ins::find_position(stand_ins::text_of(path)));
    return static_cast<CGImageSourceRef>(
        hand_out_file(scripted, nullptr, "CGImageSourceCreateWithURL"));
}

CFDictionaryRef CGImageSourceCopyPropertiesAtIndex(CGImageSourceRef image, size_t index,
                                                   CFDictionaryRef /*options*/) {
    stand_ins::enter("CGImageSourceCopyPropertiesAtIndex");
    if (index != 0)
        return nullptr;
    return static_cast<CFDictionaryRef>(stand_ins::hand_out([file_of(object_of(image)) scripted],
                                                            "CGImageSourceCopyPropertiesAtIndex"));
}
