// The declarations of the metadata framework that the Apple platform uses; see CoreFoundation.h.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

extern "C" {

using MDItemRef = struct __MDItem *;

MDItemRef MDItemCreate(CFAllocatorRef allocator, CFStringRef path);
CFTypeRef MDItemCopyAttribute(MDItemRef item, CFStringRef name);

} // extern "C"
