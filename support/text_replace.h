// Replacing inside texts of any length in one pass. QString::remove and QString::replace with a
// text of several characters move the rest of the text for every match or batch of matches, which
// takes minutes for a forged attribute of some megabytes.
#pragma once

#include <QLatin1String>
#include <QString>

namespace support {

// What QString::replace(before, after) gives: matches are found from left to right and do not
// overlap, letter case counts, and text that comes together by a replacement is not looked at
// again. `before` must not be empty.
[[nodiscard]] QString replace_every(const QString &text, QLatin1String before, QLatin1String after);
[[nodiscard]] QString remove_every(const QString &text, QLatin1String what);

} // namespace support
