// Conversions between texts and numbers as Foundation makes them, independent of any locale.
#pragma once

#include <QStringView>
#include <QtGlobal>

namespace text {

// The longest decimal number (sign, digits, fraction, exponent) at the front of `text`, behind
// leading white space; 0 when there is none. Infinite when too large. No "nan", "inf" or
// hexadecimal digits. This is what a text's doubleValue gives.
[[nodiscard]] double leading_double(QStringView text);

// `value` without its fraction. Not a number gives 0; what lies outside of 64 bits gives the
// nearest end of their range.
[[nodiscard]] qint64 truncated_to_int64(double value);

// Characters of the longest decimal number at the front of `text`, where no white space is skipped;
// 0 when there is none.
[[nodiscard]] qsizetype decimal_number_length(QStringView text);

} // namespace text
