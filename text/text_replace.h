// Replacing inside texts of any length in one pass. QString::remove and QString::replace with a
// text of several characters move the rest of the text for every match or batch of matches, which
// takes minutes for a forged attribute of some megabytes.
#pragma once

#include <QLatin1String>
#include <QString>

namespace text {

// Does to `text` what QString::replace(before, after) does: matches are found from left to right
// and do not overlap, letter case counts, and what comes together by a replacement is not looked at
// again. `before` must not be empty; one pass holds for an `after` that is not longer.
void replace_every(QString *text, QLatin1String before, QLatin1String after);
void remove_every(QString *text, QLatin1String what);

} // namespace text
