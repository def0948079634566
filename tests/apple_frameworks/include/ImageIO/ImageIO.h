// The declarations of ImageIO that the Apple platform uses; see CoreFoundation.h.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>

extern "C" {

using CGImageSourceRef = struct CGImageSource *;

CGImageSourceRef CGImageSourceCreateWithURL(CFURLRef place, CFDictionaryRef options);
CFDictionaryRef CGImageSourceCopyPropertiesAtIndex(CGImageSourceRef image, size_t index,
                                                   CFDictionaryRef options);

} // extern "C"
