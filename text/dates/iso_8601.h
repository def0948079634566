// Times as ISO 8601 in UTC.
#pragma once

#include <QString>

#include <optional>

namespace text {

// "2020-05-09T10:45:12Z" for whole seconds since 1970 UTC, with three more digits for others. A
// year beyond four digits gets its sign. Null for what is no time: not finite, or more than ten
// million years away.
[[nodiscard]] QString iso_8601_utc(double seconds);
[[nodiscard]] QString iso_8601_utc_of_ms(const std::optional<qint64> &milliseconds);

} // namespace text
