// Reads the values of property lists that Foundation holds.
#pragma once

#include "platform/property_list.h"

namespace platform {

// A node is the address of a Foundation object, which its container keeps alive. The reader has no
// state of its own: one serves all lists.
[[nodiscard]] const property_list_reader &foundation_list_reader();

} // namespace platform
