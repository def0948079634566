// Foundation's objects as values of a property list, and texts on their way to and from Foundation.
#pragma once

#include "platform/apple/cf_ref.h"
#include "platform/property_list.h"

#import <Foundation/Foundation.h>

#include <QString>

namespace platform {

// A view of an object that somebody else keeps alive; absent for null. One of no property-list
// class has the kind `absent`.
[[nodiscard]] formats::property_list_value value_of(CFTypeRef object);

// The whole text, unpaired surrogates included; null for null, and for one beyond QString's size.
[[nodiscard]] QString text_of(CFStringRef text);
[[nodiscard]] cf_ref<CFStringRef> cfstring_of(const QString &text);

// Core Foundation's objects are Foundation's objects.
[[nodiscard]] inline NSString *as_nsstring(const cf_ref<CFStringRef> &text)
{
    return static_cast<NSString *>(const_cast<void *>(static_cast<CFTypeRef>(text.get())));
}
template <typename reference> [[nodiscard]] reference as_cf(NSObject *object)
{
    return static_cast<reference>(static_cast<CFTypeRef>(object));
}

} // namespace platform
