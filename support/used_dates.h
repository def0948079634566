// When a file was used, read from its metadata.
#pragma once

#include "platform/spotlight_item.h"
#include "plugin_static_function.h"

namespace support {

// The dates of the attributes "kMDItemLastUsedDate" and "kMDItemUsedDates", in seconds since 1970
// UTC. Null or empty for an attribute that the item does not have or whose text the system does
// not hand out directly; a text that is no date counts as 0, as everywhere in this library. Stops
// between two dates once the run is cancelled, keeping those gathered.
[[nodiscard]] struct_used_date used_dates_from(const platform::spotlight_item &item);

} // namespace support
