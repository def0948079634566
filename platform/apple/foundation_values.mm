#include "platform/foundation_values.h"

#include "platform/apple/contained.h"
#include "platform/apple/foundation_reader.h"

namespace platform {

namespace {

// Without a fixed locale the user's language and clock would show in the text.
NSString *local_time_text(const NSDate *date)
{
    NSDateFormatter *formatter = [[[NSDateFormatter alloc] init] autorelease];
    [formatter setLocale:[NSLocale localeWithLocaleIdentifier:@"en_US_POSIX"]];
    [formatter setDateFormat:@"dd-MMM-yyyy,HH:mm:ss a"];
    return [formatter stringFromDate:const_cast<NSDate *>(date)];
}

} // namespace

release_pool::release_pool()
    : pool_([[NSAutoreleasePool alloc] init])
{
}

release_pool::~release_pool()
{
    [static_cast<NSAutoreleasePool *>(pool_) drain];
}

QString text_of_cfstring(const __CFString *text)
{
    return contained_in_pool(QString(), [text] { return text_of(text); });
}

QString text_of_key(const void *key)
{
    return text_of_cfstring(static_cast<const __CFString *>(key));
}

formats::property_list_value look_up(const void *key, void *dictionary)
{
    if (key == nullptr || dictionary == nullptr)
        return {};
    return contained(formats::property_list_value(), [key, dictionary] {
        // The dictionary may let go of the value while it is still read.
        NSObject *found = [static_cast<NSDictionary *>(dictionary)
            objectForKey:static_cast<NSString *>(const_cast<void *>(key))];
        return value_of([[found retain] autorelease]);
    });
}

std::optional<QString> formatted_local_date(const NSDate *date, const NSObject *object)
{
    using answer = std::optional<QString>;
    return contained_in_pool(answer(), [date, object]() -> answer {
        if (date == nil || ![object isKindOfClass:[NSDate class]])
            return std::nullopt;
        NSString *text = local_time_text(date);
        if (text == nil)
            return std::nullopt;
        return text_of(as_cf<CFStringRef>(text));
    });
}

} // namespace platform
