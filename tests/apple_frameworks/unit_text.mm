#include "unit_text.h"

#include <algorithm>

#include <cstdlib>
#include <cstring>

@implementation unit_text
+ (NSString *)withText:(const QString &)text
{
    unit_text *made = [[[unit_text alloc] init] autorelease];
    made->text_ = new QString(text);
    const bool is_ascii =
        std::all_of(text.cbegin(), text.cend(), [](QChar unit) { return unit.unicode() < 0x80; });
    made->bytes_ = is_ascii ? ::strdup(text.toLatin1().constData()) : nullptr;
    return made;
}
- (void)dealloc
{
    delete text_;
    std::free(bytes_);
    [super dealloc];
}
- (NSUInteger)length
{
    return static_cast<NSUInteger>(text_->size());
}
- (unichar)characterAtIndex:(NSUInteger)index
{
    return text_->at(static_cast<int>(index)).unicode();
}
- (const char *)cString
{
    return bytes_;
}
@end

namespace stand_ins {

QString text_of(NSString *text)
{
    QString copy(static_cast<int>([text length]), Qt::Uninitialized);
    [text getCharacters:reinterpret_cast<unichar *>(copy.data())
                  range:NSMakeRange(0, [text length])];
    return copy;
}

} // namespace stand_ins
