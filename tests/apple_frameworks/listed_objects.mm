#include "listed_objects.h"

#include "stand_ins.h"
#include "unit_text.h"

#include "platform/portable/binary_property_list.h"
#include "platform/portable/xml_property_list.h"

#include <memory>

using platform::property_list_value;
using platform::value_kind;

namespace {

struct parsed_list {
    QByteArray bytes;
    platform::binary_property_list binary;
    platform::xml_property_list xml;
};

// One value, and the list that it must not outlive.
struct listed_value {
    std::shared_ptr<parsed_list> list;
    property_list_value value;
};

NSObject *object_of(const listed_value &listed);

// The object that a container hands out for a key each time, as it keeps its values. It also gives
// them to the caller's pool, as Apple's may.
NSObject *kept(NSMutableDictionary *known, id<NSCopying> key, const listed_value &listed) {
    NSObject *object = [known objectForKey:key];
    if (object == nil && !listed.value.is(value_kind::absent)) {
        const stand_ins::local_pool pool;
        object = object_of(listed);
        [known setObject:object forKey:key];
    }
    return [[object retain] autorelease];
}

} // namespace

@interface listed_number : NSNumber {
    listed_value *listed_;
}
- (id)initWithListed:(const listed_value &)listed;
@end

@implementation listed_number
- (id)initWithListed:(const listed_value &)listed {
    self = [super init];
    listed_ = new listed_value(listed);
    return self;
}
- (void)dealloc {
    delete listed_;
    [super dealloc];
}
- (const char *)objCType {
    return listed_->value.is_floating() ? "d" : "q";
}
- (double)doubleValue {
    return listed_->value.double_value();
}
- (long long)longLongValue {
    return listed_->value.integer_value();
}
@end

@interface listed_boolean : listed_number
@end

@implementation listed_boolean
@end

@interface listed_array : NSArray {
    listed_value *listed_;
    NSMutableDictionary *known_;
}
- (id)initWithListed:(const listed_value &)listed;
@end

@implementation listed_array
- (id)initWithListed:(const listed_value &)listed {
    self = [super init];
    listed_ = new listed_value(listed);
    known_ = [[NSMutableDictionary alloc] init];
    return self;
}
- (void)dealloc {
    [known_ release];
    delete listed_;
    [super dealloc];
}
- (NSUInteger)count {
    return static_cast<NSUInteger>(listed_->value.count());
}
- (id)objectAtIndex:(NSUInteger)index {
    NSNumber *key = [[NSNumber alloc] initWithUnsignedLong:index];
    NSObject *object =
        kept(known_, key, {listed_->list, listed_->value.at(static_cast<int>(index))});
    [key release];
    return object;
}
@end

@interface listed_dictionary : NSDictionary {
    listed_value *listed_;
    NSMutableDictionary *known_;
}
- (id)initWithListed:(const listed_value &)listed;
@end

@implementation listed_dictionary
- (id)initWithListed:(const listed_value &)listed {
    self = [super init];
    listed_ = new listed_value(listed);
    known_ = [[NSMutableDictionary alloc] init];
    return self;
}
- (void)dealloc {
    [known_ release];
    delete listed_;
    [super dealloc];
}
- (NSUInteger)count {
    return static_cast<NSUInteger>(listed_->value.count());
}
- (id)objectForKey:(id)key {
    return kept(known_, key, {listed_->list, listed_->value.value(stand_ins::text_of(key))});
}
@end

namespace {

// What the portable reader has cut off is for the platform to cut off: it finds a pair in its
// place.
QString whole_text(const property_list_value &value) {
    const QString text = value.text();
    return value.take_cut_text() ? text + QStringLiteral("\U0001f600") : text;
}

NSObject *object_of(const listed_value &listed) {
    const property_list_value &value = listed.value;
    switch (value.kind()) {
    case value_kind::absent:
        return nil;
    case value_kind::text:
        return [unit_text withText:whole_text(value)];
    case value_kind::boolean:
        return [[[listed_boolean alloc] initWithListed:listed] autorelease];
    case value_kind::number:
        return [[[listed_number alloc] initWithListed:listed] autorelease];
    case value_kind::date:
        return [NSDate dateWithTimeIntervalSinceReferenceDate:value.seconds_since_reference_date()];
    case value_kind::data:
        return [NSData data];
    case value_kind::array:
        return [[[listed_array alloc] initWithListed:listed] autorelease];
    case value_kind::dictionary:
        break;
    }
    return [[[listed_dictionary alloc] initWithListed:listed] autorelease];
}

} // namespace

namespace stand_ins {

NSObject *object_of_list(const QByteArray &bytes) {
    listed_value top{std::make_shared<parsed_list>(), {}};
    parsed_list &list = *top.list;
    list.bytes = bytes;
    if (platform::binary_property_list::is_binary(bytes)) {
        if (list.binary.load(list.bytes))
            top.value = {&list.binary, list.binary.root()};
    } else if (list.xml.load(&list.bytes)) {
        top.value = {&list.xml, list.xml.root()};
    }
    return object_of(top);
}

bool is_boolean_class(Class tested) {
    return tested == [listed_boolean class] || tested == [[NSNumber numberWithBool:YES] class];
}

} // namespace stand_ins
