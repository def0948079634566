// A text of any UTF-16 units, as Apple's are: GNUstep's own refuse unpaired surrogates and drop
// byte-order marks.
#pragma once

#import <Foundation/Foundation.h>

#include <QString>

@interface unit_text : NSString {
    QString *text_;
    char *bytes_;
}
+ (NSString *)withText:(const QString &)text;
// The text as a C string that dies with the object; null unless it is pure ASCII.
- (const char *)cString;
@end

namespace stand_ins {

QString text_of(NSString *text);

} // namespace stand_ins
