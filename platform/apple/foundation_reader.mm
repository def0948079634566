#include "platform/apple/foundation_reader.h"

#include "platform/apple/contained.h"

#include "text/foundation_numbers.h"

#include <algorithm>
#include <limits>

namespace platform {

namespace {

// Far beyond any text that a file may bring, and within what QString can hold.
constexpr CFIndex max_foundation_text_units = CFIndex{1} << 28;

NSObject *object_of(formats::property_list_node node)
{
    return static_cast<NSObject *>(reinterpret_cast<void *>(node));
}

formats::property_list_node node_of(CFTypeRef object)
{
    return reinterpret_cast<formats::property_list_node>(object);
}

// The object as one of the class; nil when it is of another. A template argument may not depend on
// an Objective-C class, so the class comes along.
template <typename object_class> object_class *as(Class wanted, formats::property_list_node node)
{
    NSObject *object = object_of(node);
    return [object isKindOfClass:wanted] ? static_cast<object_class *>(object) : nil;
}

NSNumber *as_number(formats::property_list_node node)
{
    return as<NSNumber>([NSNumber class], node);
}

bool is_boolean(CFTypeRef object)
{
    return CFGetTypeID(object) == CFBooleanGetTypeID();
}

formats::value_kind kind_of(NSObject *object)
{
    if ([object isKindOfClass:[NSString class]])
        return formats::value_kind::text;
    if ([object isKindOfClass:[NSNumber class]])
        return is_boolean(object) ? formats::value_kind::boolean : formats::value_kind::number;
    if ([object isKindOfClass:[NSDate class]])
        return formats::value_kind::date;
    if ([object isKindOfClass:[NSData class]])
        return formats::value_kind::data;
    if ([object isKindOfClass:[NSArray class]])
        return formats::value_kind::array;
    if ([object isKindOfClass:[NSDictionary class]])
        return formats::value_kind::dictionary;
    return formats::value_kind::absent;
}

int count_of(NSUInteger count)
{
    return static_cast<int>(
        std::min(count, static_cast<NSUInteger>(std::numeric_limits<int>::max())));
}

bool hand_out(NSObject *object, formats::property_list_node *found)
{
    if (object == nil)
        return false;
    *found = node_of(object);
    return true;
}

// A node is an object that its list keeps alive; the reader itself has no state.
class foundation_reader final : public formats::property_list_reader
{
public:
    formats::value_kind kind(formats::property_list_node node) const override;
    QString class_name(formats::property_list_node node) const override;
    QString text(formats::property_list_node node) const override;
    double double_value(formats::property_list_node node) const override;
    double seconds_since_reference_date(formats::property_list_node node) const override;
    bool is_floating(formats::property_list_node node) const override;
    qint64 integer_value(formats::property_list_node node) const override;
    int count(formats::property_list_node node) const override;
    bool look_up(formats::property_list_node dictionary, const QString &key,
                 formats::property_list_node *found) const override;
    bool element(formats::property_list_node array, int index,
                 formats::property_list_node *found) const override;
};

formats::value_kind foundation_reader::kind(formats::property_list_node node) const
{
    return contained_in_pool(formats::value_kind::absent,
                             [node] { return kind_of(object_of(node)); });
}

QString foundation_reader::class_name(formats::property_list_node node) const
{
    return contained_in_pool(QString(), [node] {
        NSString *name = NSStringFromClass([object_of(node) class]);
        return text_of(as_cf<CFStringRef>(name));
    });
}

QString foundation_reader::text(formats::property_list_node node) const
{
    return contained_in_pool(QString(), [this, node] {
        return within_limit(text_of(as_cf<CFStringRef>(as<NSString>([NSString class], node))));
    });
}

double foundation_reader::double_value(formats::property_list_node node) const
{
    return contained_in_pool(0.0, [node] {
        NSString *text = as<NSString>([NSString class], node);
        return text != nil ? [text doubleValue] : [as_number(node) doubleValue];
    });
}

double foundation_reader::seconds_since_reference_date(formats::property_list_node node) const
{
    return contained_in_pool(
        0.0, [node] { return [as<NSDate>([NSDate class], node) timeIntervalSinceReferenceDate]; });
}

bool foundation_reader::is_floating(formats::property_list_node node) const
{
    return contained_in_pool(false, [node] {
        NSNumber *number = as_number(node);
        return number != nil && CFNumberIsFloatType(as_cf<CFNumberRef>(number));
    });
}

qint64 foundation_reader::integer_value(formats::property_list_node node) const
{
    if (is_floating(node))
        return text::truncated_to_int64(double_value(node));
    return contained_in_pool(qint64{0}, [node] { return qint64{[as_number(node) longLongValue]}; });
}

int foundation_reader::count(formats::property_list_node node) const
{
    return contained_in_pool(0, [node] {
        NSArray *array = as<NSArray>([NSArray class], node);
        return count_of(array != nil ? [array count]
                                     : [as<NSDictionary>([NSDictionary class], node) count]);
    });
}

// No pool in these two: it would take the value along if the container made it just now.
bool foundation_reader::look_up(formats::property_list_node dictionary, const QString &key,
                                formats::property_list_node *found) const
{
    return contained(false, [dictionary, &key, found] {
        const cf_ref<CFStringRef> name = cfstring_of(key);
        NSDictionary *searched = as<NSDictionary>([NSDictionary class], dictionary);
        return name && hand_out([searched objectForKey:as_nsstring(name)], found);
    });
}

bool foundation_reader::element(formats::property_list_node array, int index,
                                formats::property_list_node *found) const
{
    return contained(false, [array, index, found] {
        NSArray *searched = as<NSArray>([NSArray class], array);
        if (index < 0 || static_cast<NSUInteger>(index) >= [searched count])
            return false;
        return hand_out([searched objectAtIndex:static_cast<NSUInteger>(index)], found);
    });
}

} // namespace

formats::property_list_value value_of(CFTypeRef object)
{
    static const foundation_reader reader;
    return object == nullptr ? formats::property_list_value()
                             : formats::property_list_value(&reader, node_of(object));
}

QString text_of(CFStringRef text)
{
    if (text == nullptr)
        return {};
    const CFIndex length = CFStringGetLength(text);
    if (length < 0 || length > max_foundation_text_units)
        return {};
    QString copy(static_cast<int>(length), Qt::Uninitialized);
    CFStringGetCharacters(text, CFRangeMake(0, length), reinterpret_cast<UniChar *>(copy.data()));
    return copy;
}

cf_ref<CFStringRef> cfstring_of(const QString &text)
{
    return cf_ref<CFStringRef>(CFStringCreateWithCharacters(
        kCFAllocatorDefault, reinterpret_cast<const UniChar *>(text.utf16()), text.size()));
}

} // namespace platform
