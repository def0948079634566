// Property lists as Foundation's objects, with all that Apple's Foundation reads and refuses.
// GNUstep reads other forms in other ways; these objects are views into the portable readers.
#pragma once

#import <Foundation/Foundation.h>

#include <QByteArray>

namespace stand_ins {

// The list's top object, autoreleased; nil when the bytes are no list.
NSObject *object_of_list(const QByteArray &bytes);

bool is_boolean_class(Class tested);

} // namespace stand_ins
