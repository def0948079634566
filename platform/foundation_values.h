// What the opaque pointers of the host-facing interface lead to: texts, dictionaries and dates that
// another program part holds. On macOS they are Foundation's own objects; elsewhere they point to
// the types in portable/foundation_stand_ins.h. Nothing is retained past a call; nothing throws.
#pragma once

#include "platform/opaque_types.h"
#include "platform/property_list.h"

#include <QString>

#include <optional>

namespace platform {

// Objects that Foundation hands out during its lifetime are released at its end.
class release_pool
{
public:
    release_pool();
    // NOLINTNEXTLINE(performance-trivially-destructible): not on every platform
    ~release_pool();
    release_pool(const release_pool &) = delete;
    release_pool &operator=(const release_pool &) = delete;

private:
    [[maybe_unused]] void *pool_; // needed where there are such pools
};

// The whole text; null for a null pointer.
[[nodiscard]] QString text_of_cfstring(const __CFString *text);
// The text of a key that the host passed.
[[nodiscard]] QString text_of_key(const void *key);
// The dictionary's value for that key, valid while the release_pool of the caller lives; absent
// when there is none.
[[nodiscard]] formats::property_list_value look_up(const void *key, void *dictionary);
// `date` as local time in the form "dd-MMM-yyyy,HH:mm:ss a"; nullopt unless `object` is a date.
[[nodiscard]] std::optional<QString> formatted_local_date(const NSDate *date,
                                                          const NSObject *object);

} // namespace platform
