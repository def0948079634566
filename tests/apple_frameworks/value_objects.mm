#include "value_objects.h"

#include "listed_objects.h"
#include "unit_text.h"

namespace stand_ins {

namespace {

struct foundation_object {
    NSObject *operator()(const QString &text) const { return [unit_text withText:text]; }
    NSObject *operator()(qint64 number) const { return [NSNumber numberWithLongLong:number]; }
    NSObject *operator()(const platform::spotlight_floating &number) const {
        return number.single_precision ? [NSNumber numberWithFloat:static_cast<float>(number.value)]
                                       : [NSNumber numberWithDouble:number.value];
    }
    NSObject *operator()(bool value) const { return [NSNumber numberWithBool:value ? YES : NO]; }
    NSObject *operator()(const platform::spotlight_date &date) const {
        return [NSDate dateWithTimeIntervalSince1970:date.epoch_seconds];
    }
    NSObject *operator()(const platform::spotlight_list &list) const {
        NSMutableArray *elements = [NSMutableArray array];
        for (const platform::spotlight_scalar &scalar : list)
            [elements addObject:std::visit(*this, scalar)];
        return elements;
    }
};

platform::spotlight_scalar scalar_of(NSObject *object) {
    if ([object isKindOfClass:[NSDate class]])
        return platform::spotlight_date{[static_cast<NSDate *>(object) timeIntervalSince1970]};
    if ([object isKindOfClass:[NSString class]])
        return text_of(static_cast<NSString *>(object));
    NSNumber *number = static_cast<NSNumber *>(object);
    if (is_boolean_class([number class]))
        return [number boolValue] == YES;
    const char type = *[number objCType];
    if (type == 'd' || type == 'f')
        return platform::spotlight_floating{[number doubleValue], type == 'f'};
    return qint64{[number longLongValue]};
}

void set_number(NSMutableDictionary *gps, NSString *name, const std::optional<double> &value) {
    if (value)
        [gps setObject:[NSNumber numberWithDouble:*value] forKey:name];
}

void set_text(NSMutableDictionary *gps, NSString *name, const QString &text) {
    if (!text.isNull())
        [gps setObject:[unit_text withText:text] forKey:name];
}

} // namespace

NSObject *object_of(const platform::spotlight_value &value) {
    return std::visit(foundation_object(), value);
}

NSDictionary *properties_of(const platform::gps_position &position) {
    NSMutableDictionary *gps = [NSMutableDictionary dictionary];
    set_number(gps, @"Latitude", position.latitude);
    set_text(gps, @"LatitudeRef", position.latitude_reference);
    set_number(gps, @"Longitude", position.longitude);
    set_text(gps, @"LongitudeRef", position.longitude_reference);
    return [gps count] == 0 ? [NSDictionary dictionary]
                            : [NSDictionary dictionaryWithObject:gps forKey:@"{GPS}"];
}

platform::spotlight_value value_of(NSObject *object) {
    if (![object isKindOfClass:[NSArray class]])
        return std::visit([](auto scalar) { return platform::spotlight_value(scalar); },
                          scalar_of(object));
    platform::spotlight_list list;
    for (NSObject *element in static_cast<NSArray *>(object))
        list.push_back(scalar_of(element));
    return list;
}

} // namespace stand_ins
