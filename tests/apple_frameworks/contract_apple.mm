// The Apple platform gets Foundation's objects, and metadata from what the stand-ins are told.
#include "tests/fixtures/platform_contract.h"

#import <Foundation/Foundation.h>

#ifndef __APPLE__
#include "stand_ins.h"
#include "unit_text.h"
#endif

@interface changing_dictionary : NSDictionary {
    NSDictionary *first_;
    NSDictionary *later_;
    int asked_;
}
- (id)initWithFirst:(NSDictionary *)first later:(NSDictionary *)later;
@end

@implementation changing_dictionary
- (id)initWithFirst:(NSDictionary *)first later:(NSDictionary *)later
{
    self = [super init];
    first_ = [first retain];
    later_ = [later retain];
    return self;
}
- (void)dealloc
{
    [first_ release];
    [later_ release];
    [super dealloc];
}
- (id)objectForKey:(id)key
{
    return [asked_++ == 0 ? first_ : later_ objectForKey:key];
}
@end

namespace {

NSDictionary *dictionary_in(const QByteArray &list)
{
    NSData *data = [NSData dataWithBytes:list.constData()
                                  length:static_cast<NSUInteger>(list.size())];
    return [NSPropertyListSerialization propertyListWithData:data
                                                     options:NSPropertyListImmutable
                                                      format:nullptr
                                                       error:nullptr];
}

#ifndef __APPLE__
void set_degrees(NSMutableDictionary *gps, NSString *name, const std::optional<double> &value,
                 const QString &reference)
{
    if (value)
        [gps setObject:[NSNumber numberWithDouble:*value] forKey:name];
    if (!reference.isNull())
        [gps setObject:[unit_text withText:reference] forKey:[name stringByAppendingString:@"Ref"]];
}

NSDictionary *properties_of(const formats::gps_position &position)
{
    NSMutableDictionary *gps = [NSMutableDictionary dictionary];
    set_degrees(gps, @"Latitude", position.latitude, position.latitude_reference);
    set_degrees(gps, @"Longitude", position.longitude, position.longitude_reference);
    return [NSDictionary dictionaryWithObject:gps forKey:@"{GPS}"];
}
#endif

class apple_fixture final : public contract_fixture
{
public:
    ~apple_fixture() override { [pool_ drain]; }

    void *key(const QString &text) override
    {
        return [NSString stringWithCharacters:reinterpret_cast<const unichar *>(text.utf16())
                                       length:static_cast<NSUInteger>(text.size())];
    }
    const __CFString *cfstring(const QString &text) override
    {
        return static_cast<const __CFString *>(key(text));
    }
    void *dictionary(const QByteArray &list) override { return dictionary_in(list); }
    void *changing_dictionary(const QByteArray &first, const QByteArray &later) override
    {
        return [[[::changing_dictionary alloc] initWithFirst:dictionary_in(first)
                                                       later:dictionary_in(later)] autorelease];
    }
    NSDate *date(double epoch_seconds) override
    {
        return [NSDate dateWithTimeIntervalSince1970:epoch_seconds];
    }
    NSObject *object_of(NSDate *date) override { return date; }
    NSObject *text_object() override { return @"2020-05-09 10:45:12 +0000"; }

#ifdef __APPLE__
    bool give_attribute(const QString &, const QString &, const QString &) override
    {
        return false;
    }
    bool give_position(const QString &, const formats::gps_position &) override
    {
        return false;
    }
    QStringList faults() override
    {
        return {};
    }
#else
    apple_fixture()
    {
        stand_ins::reset();
    }

    bool give_attribute(const QString &path, const QString &name, const QString &text) override
    {
        stand_ins::set_attributes([unit_text withText:path],
                                  [NSDictionary dictionaryWithObject:[unit_text withText:text]
                                                              forKey:[unit_text withText:name]]);
        return true;
    }
    bool give_position(const QString &path, const formats::gps_position &position) override
    {
        stand_ins::set_image_properties([unit_text withText:path], properties_of(position));
        return true;
    }
    QStringList faults() override
    {
        return stand_ins::faults();
    }
#endif

private:
    NSAutoreleasePool *pool_ = [[NSAutoreleasePool alloc] init];
};

} // namespace

std::unique_ptr<contract_fixture> make_contract_fixture()
{
    return std::make_unique<apple_fixture>();
}
