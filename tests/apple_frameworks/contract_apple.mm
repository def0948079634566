// The Apple platform gets Foundation's objects, and metadata from what the stand-ins are told.
#include "tests/support/platform_contract.h"

#include "listed_objects.h"
#include "stand_ins.h"
#include "unit_text.h"

@interface changing_dictionary : NSDictionary {
    NSDictionary *first_;
    NSDictionary *later_;
    int asked_;
}
- (id)initWithFirst:(NSObject *)first later:(NSObject *)later;
@end

@implementation changing_dictionary
- (id)initWithFirst:(NSObject *)first later:(NSObject *)later {
    self = [super init];
    first_ = static_cast<NSDictionary *>([first retain]);
    later_ = static_cast<NSDictionary *>([later retain]);
    return self;
}
- (void)dealloc {
    [first_ release];
    [later_ release];
    [super dealloc];
}
- (id)objectForKey:(id)key {
    return [asked_++ == 0 ? first_ : later_ objectForKey:key];
}
@end

namespace {

struct foundation_object {
    NSObject *operator()(const QString &text) const { return [unit_text withText:text]; }
    NSObject *operator()(qint64 number) const { return [NSNumber numberWithLongLong:number]; }
    NSObject *operator()(const platform::spotlight_floating &number) const {
        return [NSNumber numberWithDouble:number.value];
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

void set_number(NSMutableDictionary *gps, NSString *name, const std::optional<double> &value) {
    if (value)
        [gps setObject:[NSNumber numberWithDouble:*value] forKey:name];
}

void set_text(NSMutableDictionary *gps, NSString *name, const QString &text) {
    if (!text.isNull())
        [gps setObject:[unit_text withText:text] forKey:name];
}

class apple_fixture final : public contract_fixture {
  public:
    apple_fixture() { stand_ins::reset(); }

    void *key(const QString &text) override { return [unit_text withText:text]; }
    const __CFString *cfstring(const QString &text) override {
        return static_cast<const __CFString *>(key(text));
    }
    void *dictionary(const QByteArray &list) override { return stand_ins::object_of_list(list); }
    void *changing_dictionary(const QByteArray &first, const QByteArray &later) override {
        return [[[::changing_dictionary alloc] initWithFirst:stand_ins::object_of_list(first)
                                                       later:stand_ins::object_of_list(later)]
            autorelease];
    }
    NSDate *date(double epoch_seconds) override {
        return [NSDate dateWithTimeIntervalSince1970:epoch_seconds];
    }
    NSObject *object_of(NSDate *date) override { return date; }
    NSObject *text_object() override { return @"2020-05-09 10:45:12 +0000"; }

    void give_attribute(const QString &path, const QString &name,
                        const platform::spotlight_value &value) override {
        NSObject *object = std::visit(foundation_object(), value);
        stand_ins::set_attributes([unit_text withText:path],
                                  [NSDictionary dictionaryWithObject:object
                                                              forKey:[unit_text withText:name]]);
    }
    void give_position(const QString &path, const platform::gps_position &position) override {
        NSMutableDictionary *gps = [NSMutableDictionary dictionary];
        set_number(gps, @"Latitude", position.latitude);
        set_text(gps, @"LatitudeRef", position.latitude_reference);
        set_number(gps, @"Longitude", position.longitude);
        set_text(gps, @"LongitudeRef", position.longitude_reference);
        stand_ins::set_image_properties([unit_text withText:path],
                                        [NSDictionary dictionaryWithObject:gps forKey:@"{GPS}"]);
    }

    QStringList faults() override { return stand_ins::faults(); }

  private:
    const platform::release_pool pool_;
};

} // namespace

std::unique_ptr<contract_fixture> make_contract_fixture() {
    return std::make_unique<apple_fixture>();
}
