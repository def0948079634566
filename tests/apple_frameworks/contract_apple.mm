// The Apple platform gets Foundation's objects, and metadata from what the stand-ins are told.
#include "tests/support/platform_contract.h"

#include "listed_objects.h"
#include "stand_ins.h"
#include "unit_text.h"
#include "value_objects.h"

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
        stand_ins::set_attributes([unit_text withText:path],
                                  [NSDictionary dictionaryWithObject:stand_ins::object_of(value)
                                                              forKey:[unit_text withText:name]]);
    }
    void give_position(const QString &path, const platform::gps_position &position) override {
        stand_ins::set_image_properties([unit_text withText:path],
                                        stand_ins::properties_of(position));
    }

    QStringList faults() override { return stand_ins::faults(); }

  private:
    const stand_ins::local_pool pool_;
};

} // namespace

std::unique_ptr<contract_fixture> make_contract_fixture() {
    return std::make_unique<apple_fixture>();
}
