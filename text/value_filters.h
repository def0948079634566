// From the texts in which Core Foundation prints a value to the value itself. The names are those
// of the host's library. The examined source decides how long a text is, so all take linear time.
#pragma once

#include "run/cancellation.h"
#include "run/log_sink.h"

#include <QString>

namespace text {

// <CFNumber 0x7fff [0x7fff]>{value = +5, type = kCFNumberSInt64Type} gives "5". A negative number
// has no "+" and gives an empty text: rows made so far are to be comparable.
[[nodiscard]] QString get_filtered_number_value(QString text);
// <CFBoolean 0x7fff [0x7fff]>{value = true} gives "true".
[[nodiscard]] QString get_filtered_boolean_value(QString text);
[[nodiscard]] QString get_filtered_cfstring_value(QString text);
[[nodiscard]] QString get_filtered_wherefrom_value(QString text);
// The pieces between commas, parted by ";". Null when cancelled.
[[nodiscard]] QString get_filtered_string_value(QString text, const run::cancellation &cancelled);
// Seconds since 1970 UTC of a printed date; null for an empty text.
[[nodiscard]] QString get_filtered_date_value(QString text, const run::log_sink &log);

} // namespace text
