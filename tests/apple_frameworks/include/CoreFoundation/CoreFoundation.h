// The few declarations of Core Foundation that the Apple platform uses, for building it without a
// Mac. The functions are in the stand-in library and work on GNUstep's objects.
#pragma once

#include <cstdint>

extern "C" {

using Boolean = unsigned char;
using UniChar = std::uint16_t;
using UInt32 = std::uint32_t;
using CFIndex = long;
using CFTypeID = unsigned long;
using CFTypeRef = const void *;
using CFAllocatorRef = const struct __CFAllocator *;
using CFStringRef = const struct __CFString *;
using CFNumberRef = const struct __CFNumber *;
using CFDictionaryRef = const struct __CFDictionary *;
using CFURLRef = const struct __CFURL *;
using CFStringEncoding = UInt32;

struct CFRange
{
    CFIndex location;
    CFIndex length;
};

enum : CFStringEncoding { kCFStringEncodingMacRoman = 0 };

extern const CFAllocatorRef kCFAllocatorDefault;

inline CFRange CFRangeMake(CFIndex location, CFIndex length)
{
    return {location, length};
}

CFTypeRef CFRetain(CFTypeRef object);
void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);
CFTypeID CFBooleanGetTypeID();
CFStringRef CFCopyDescription(CFTypeRef object);
Boolean CFNumberIsFloatType(CFNumberRef number);
CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const UniChar *units,
                                         CFIndex count);
CFIndex CFStringGetLength(CFStringRef text);
void CFStringGetCharacters(CFStringRef text, CFRange range, UniChar *units);
const char *CFStringGetCStringPtr(CFStringRef text, CFStringEncoding encoding);

} // extern "C"
