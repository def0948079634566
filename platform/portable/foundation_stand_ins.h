// What the opaque pointers of the host-facing interface point to where there is no Foundation. A
// caller makes an object of these types, keeps it alive during the call, and passes the pointer
// that the helper below gives.
#pragma once

#include "platform/opaque_types.h"
#include "platform/property_list.h"

#include <QString>

namespace platform {

// In place of an NSString or a CFString.
struct dictionary_key
{
    QString text;
};

// In place of an NSDictionary. The values must stay valid until the call returns.
class dictionary_source
{
public:
    virtual ~dictionary_source() = default;
    [[nodiscard]] virtual formats::property_list_value value(const QString &key) = 0;
};

// A dictionary that was read from a property list.
class listed_dictionary final : public dictionary_source
{
public:
    explicit listed_dictionary(const formats::property_list_value &dictionary)
        : dictionary_(dictionary)
    {
    }
    [[nodiscard]] formats::property_list_value value(const QString &key) override
    {
        return dictionary_.value(key);
    }

private:
    formats::property_list_value dictionary_;
};

// In place of an NSDate or another NSObject.
struct object_stand_in
{
    formats::value_kind kind = formats::value_kind::absent;
    double epoch_seconds = 0.0; // of a date, since 1970 UTC
};

[[nodiscard]] inline void *as_pointer(dictionary_key *key)
{
    return key;
}

[[nodiscard]] inline void *as_pointer(dictionary_source *dictionary)
{
    return dictionary;
}

[[nodiscard]] inline const __CFString *as_cfstring(const dictionary_key *text)
{
    return reinterpret_cast<const __CFString *>(text);
}

[[nodiscard]] inline NSDate *as_nsdate(object_stand_in *date)
{
    return reinterpret_cast<NSDate *>(date);
}

[[nodiscard]] inline NSObject *as_nsobject(object_stand_in *object)
{
    return reinterpret_cast<NSObject *>(object);
}

} // namespace platform
