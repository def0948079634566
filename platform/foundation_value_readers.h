// Single values of a dictionary that another program part holds, as texts. The names are those of
// the host's library. `key` and `dictionary` are what foundation_values.h says they are.
//
// Each value is looked up twice, as the host's other readers do: the first look-up decides whether
// there is one, the second gives it. A dictionary that has changed in between is a failure that the
// plain readers log.
#pragma once

#include "platform/foundation_values.h"
#include "run/log_sink.h"

#include <QString>

namespace platform {

// Null for a missing value or one of another class.
[[nodiscard]] QString get_nsstring_values(void *key, void *dictionary, const run::log_sink &log);
[[nodiscard]] QString get_nsnumber_values(void *key, void *dictionary, const run::log_sink &log);
[[nodiscard]] QString get_nsnumber_values_yes_no(void *key, void *dictionary,
                                                 const run::log_sink &log);
// The label, ":+:" and the value; null without a value.
[[nodiscard]] QString get_nsnumber_key_and_value_yes_no(void *key, void *dictionary,
                                                        const QString &label);
[[nodiscard]] QString get_nsstring_key_and_values(void *key, void *dictionary,
                                                  const QString &label);
[[nodiscard]] QString get_nsnumber_key_and_values(void *key, void *dictionary,
                                                  const QString &label);
[[nodiscard]] QString get_nsarray_key_and_values(void *key, void *dictionary, const QString &label);
// Seconds since 1970 UTC; 0 unless `object` is a date.
[[nodiscard]] qint64 convert_nsdate_to_epoch(NSDate *date, NSObject *object);

} // namespace platform
