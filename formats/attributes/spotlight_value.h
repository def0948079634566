// One metadata value of a file, as Spotlight would hand it out, and the text that Core Foundation
// prints for it.
#pragma once

#include <QString>
#include <QStringList>

#include <variant>
#include <vector>

namespace formats {

// Seconds since 1970-01-01 00:00:00 UTC, with fraction.
struct spotlight_date
{
    double epoch_seconds = 0.0;
};

// A floating-point number; single precision prints with fewer digits.
struct spotlight_floating
{
    double value = 0.0;
    bool single_precision = false;
};

using spotlight_scalar = std::variant<QString, qint64, spotlight_floating, bool, spotlight_date>;
using spotlight_list = std::vector<spotlight_scalar>;
using spotlight_value =
    std::variant<QString, qint64, spotlight_floating, bool, spotlight_date, spotlight_list>;

// The text that CFCopyDescription gives for the value: the form that the value filters work on.
// Null for a value that has no text (a date out of range, an empty list).
[[nodiscard]] QString description_text(const spotlight_value &value);

// Whether the date has such a text: finite, and at most 1e11 seconds from 1970.
[[nodiscard]] bool is_printable(const spotlight_date &date);

// Whether the system hands such a text out as a C string directly: it does so for texts that are
// stored in eight bits, which are those of ASCII characters only.
[[nodiscard]] bool has_c_string(const QString &text);

} // namespace formats
