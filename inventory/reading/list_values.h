// Takes a list apart into its values.
#pragma once

#include "formats/property_list/property_list_parser.h"
#include "inventory/reading/list_account.h"

namespace inventory {

// What the values of one list may cost. Values of a binary list may be shared: a few bytes can name
// one text many times.
struct value_limits
{
    qint64 count = 0;
    qint64 text_bytes = 0;
};

// What an honest list of that size needs, and some more.
[[nodiscard]] value_limits value_limits_of(qint64 list_bytes);

// Appends a value for each entry of a dictionary and each element of an array, at any depth.
// Containers say how many they hold. Returns false when something was left out.
[[nodiscard]] bool collect_values(const formats::property_list_parser &list,
                                  const value_limits &limits, std::vector<stored_value> *values);

} // namespace inventory
