// The classes that Spotlight declares for the values of its attributes. Anyone may store anything
// under a name of macOS: a text where a date belongs would be read as a date of 1970.
#pragma once

#include "formats/attributes/spotlight_value.h"

#include <QString>

#include <optional>

namespace formats {

// `value` as the class declared for the attribute of that public name. A single value under the
// name of a list becomes a list of one, a list of one under the name of a single value that value.
// Of a list of dates only the dates are kept; a list of texts keeps everything when it has a text
// at all. Nullopt when the value is of another class. Any value of a name without a declared class
// stays as it is.
[[nodiscard]] std::optional<spotlight_value> of_declared_class(const QString &name,
                                                               spotlight_value value);

} // namespace formats
