// What Apple's Foundation does differently from GNUstep's.
#include "stand_ins.h"
#include "unit_text.h"

#include <objc/runtime.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

// Both exist in a build that looks for leaks.
extern "C" __attribute__((weak)) void __lsan_disable();
extern "C" __attribute__((weak)) void __lsan_enable();

// What the runtime keeps for its classes.
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:objc_malloc\nleak:class_copyMethodList\n";
}

namespace {

constexpr char xml_header[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

// Apple's Foundation takes the zone of the process; GNUstep asks the machine's settings first.
void take_zone_of_the_process()
{
    const char *name = std::getenv("TZ");
    NSTimeZone *zone =
        name == nullptr ? nil : [NSTimeZone timeZoneWithName:[NSString stringWithUTF8String:name]];
    if (zone != nil)
        [NSTimeZone setDefaultTimeZone:zone];
}

void fill_caches()
{
    NSDateFormatter *formatter = [[[NSDateFormatter alloc] init] autorelease];
    [formatter setLocale:[NSLocale localeWithLocaleIdentifier:@"en_US_POSIX"]];
    [formatter setDateFormat:@"MMM"];
    [formatter stringFromDate:[NSDate date]];
}

} // namespace

@interface first_use : NSObject
@end

@implementation first_use
+ (void)load
{
    const bool looks_for_leaks = __lsan_disable != nullptr;
    if (looks_for_leaks)
        __lsan_disable();
    {
        const stand_ins::local_pool pool;
        take_zone_of_the_process();
        fill_caches();
    }
    if (looks_for_leaks)
        __lsan_enable();
}
@end

NSString *stand_in_string_from_class(Class shown)
{
    if (shown == [[NSNumber numberWithBool:YES] class])
        return @"__NSCFBoolean";
    return [shown isSubclassOfClass:[NSNumber class]]
               ? @"__NSCFNumber"
               : [NSString stringWithUTF8String:class_getName(shown)];
}

@implementation NSString (stand_in_texts)
+ (id)stand_in_stringWithCharacters:(const unichar *)units length:(NSUInteger)count
{
    return [unit_text withText:QString::fromUtf16(units, static_cast<int>(count))];
}
@end

@implementation NSDictionary (stand_in_lists)
+ (id)stand_in_dictionaryWithContentsOfFile:(NSString *)path
{
    stand_ins::enter("dictionaryWithContentsOfFile:");
    NSData *bytes = [NSData dataWithContentsOfFile:path];
    id list = [NSPropertyListSerialization propertyListWithData:bytes
                                                        options:NSPropertyListImmutable
                                                         format:nullptr
                                                          error:nullptr];
    return [list isKindOfClass:[NSDictionary class]] ? list : nil;
}
@end

@implementation NSPropertyListSerialization (stand_in_lists)
+ (id)stand_in_propertyListWithData:(NSData *)bytes
                            options:(NSPropertyListReadOptions)options
                             format:(NSPropertyListFormat *)format
                              error:(NSError **)error
{
    stand_ins::enter("propertyListWithData:");
    // GNUstep takes nothing for XML without this line.
    NSMutableData *list = [NSMutableData data];
    if ([bytes length] > 0 && *static_cast<const char *>([bytes bytes]) == '<' &&
        std::memcmp([bytes bytes], "<?xml", std::min<NSUInteger>(5, [bytes length])) != 0)
        [list appendBytes:xml_header length:sizeof xml_header - 1];
    [list appendData:bytes];
#undef propertyListWithData
    return [self propertyListWithData:list options:options format:format error:error];
}
@end
