// Core Foundation's texts, numbers and descriptions on GNUstep's objects.
#include "stand_ins.h"
#include "unit_text.h"

#include <CoreFoundation/CoreFoundation.h>

const CFAllocatorRef kCFAllocatorDefault = nullptr;

namespace {

constexpr CFTypeID boolean_type = 21;

NSObject *object_of(CFTypeRef object)
{
    return static_cast<NSObject *>(const_cast<void *>(object));
}

NSString *text_of(CFTypeRef text)
{
    return static_cast<NSString *>(object_of(text));
}

bool is_boolean(NSObject *object)
{
    return [object class] == [[NSNumber numberWithBool:YES] class];
}

// The pool is the caller's: what it releases too often dies at once, not when that one ends.
CFStringRef handed_out(const QString &text, const char *function)
{
    const stand_ins::local_pool pool;
    return static_cast<CFStringRef>(stand_ins::hand_out([unit_text withText:text], function));
}

} // namespace

CFTypeID CFGetTypeID(CFTypeRef object)
{
    return is_boolean(object_of(object)) ? boolean_type : boolean_type + 1;
}

CFTypeID CFBooleanGetTypeID()
{
    return boolean_type;
}

// Of texts; those of other objects are Apple's own business.
CFStringRef CFCopyDescription(CFTypeRef object)
{
    stand_ins::enter("CFCopyDescription");
    const QString text = stand_ins::text_of(text_of(object));
    return handed_out(QStringLiteral("<CFString 0x1 [0x2]>{contents = \"%1\"}").arg(text),
                      "CFCopyDescription");
}

Boolean CFNumberIsFloatType(CFNumberRef number)
{
    stand_ins::enter("CFNumberIsFloatType");
    const char type = *[static_cast<NSNumber *>(object_of(number)) objCType];
    return type == 'd' || type == 'f';
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef /*allocator*/, const UniChar *units,
                                         CFIndex count)
{
    stand_ins::enter("CFStringCreateWithCharacters");
    return handed_out(QString::fromUtf16(units, static_cast<int>(count)),
                      "CFStringCreateWithCharacters");
}

CFIndex CFStringGetLength(CFStringRef text)
{
    stand_ins::enter("CFStringGetLength");
    return static_cast<CFIndex>([text_of(text) length]);
}

void CFStringGetCharacters(CFStringRef text, CFRange range, UniChar *units)
{
    stand_ins::enter("CFStringGetCharacters");
    [text_of(text) getCharacters:units
                           range:NSMakeRange(static_cast<NSUInteger>(range.location),
                                             static_cast<NSUInteger>(range.length))];
}

const char *CFStringGetCStringPtr(CFStringRef text, CFStringEncoding encoding)
{
    stand_ins::enter("CFStringGetCStringPtr");
    NSString *object = text_of(text);
    if (encoding != kCFStringEncodingMacRoman || ![object isKindOfClass:[unit_text class]])
        return nullptr;
    return [static_cast<unit_text *>(object) cString];
}
