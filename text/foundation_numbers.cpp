#include "text/foundation_numbers.h"

#include <QByteArray>

#include <cmath>
#include <limits>

namespace text {

namespace {

// The white space that Foundation's scanners skip; wider than that of XML and of C.
bool is_skipped(ushort unit)
{
    return unit < 0x21 || (unit > 0x7e && unit < 0xa1) || (unit >= 0x2000 && unit <= 0x200b) ||
           unit == 0x3000;
}

qsizetype behind_digits(QStringView text, qsizetype position)
{
    while (position < text.size() && text[position] >= QLatin1Char('0') &&
           text[position] <= QLatin1Char('9'))
        ++position;
    return position;
}

qsizetype behind_sign(QStringView text, qsizetype position)
{
    const bool has_sign = position < text.size() && (text[position] == QLatin1Char('-') ||
                                                     text[position] == QLatin1Char('+'));
    return has_sign ? position + 1 : position;
}

} // namespace

qsizetype decimal_number_length(QStringView text)
{
    const qsizetype digits = behind_sign(text, 0);
    qsizetype end = behind_digits(text, digits);
    qsizetype digit_count = end - digits;
    if (end < text.size() && text[end] == QLatin1Char('.')) {
        const qsizetype fraction_end = behind_digits(text, end + 1);
        digit_count += fraction_end - end - 1;
        end = fraction_end;
    }
    if (digit_count == 0)
        return 0;
    if (end < text.size() && (text[end] == QLatin1Char('e') || text[end] == QLatin1Char('E'))) {
        const qsizetype exponent = behind_sign(text, end + 1);
        const qsizetype exponent_end = behind_digits(text, exponent);
        if (exponent_end > exponent)
            end = exponent_end;
    }
    return end;
}

double leading_double(QStringView text)
{
    qsizetype start = 0;
    while (start < text.size() && is_skipped(text[start].unicode()))
        ++start;
    const QStringView rest = text.mid(start);
    return rest.left(decimal_number_length(rest)).toLatin1().toDouble();
}

qint64 truncated_to_int64(double value)
{
    // 2^63 is exact as a double, the largest 64-bit number is not.
    constexpr double range_end = 9223372036854775808.0;
    if (std::isnan(value))
        return 0;
    if (value >= range_end)
        return std::numeric_limits<qint64>::max();
    if (value < -range_end)
        return std::numeric_limits<qint64>::min();
    return static_cast<qint64>(value);
}

} // namespace text
