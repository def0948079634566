// The Gregorian calendar, carried on to the past with a year 0, as macOS counts.
#pragma once

#include <QtGlobal>

namespace text {

// Seconds from 1970 to 2001, from where Apple's systems count.
constexpr qint64 seconds_1970_to_2001 = 978307200;

struct calendar_day
{
    qint64 year;
    int month; // 1 to 12
    int day;   // 1 to 31
};

[[nodiscard]] calendar_day calendar_day_of(qint64 days_since_1970);
// Days from 1970-01-01 to the first of a month. `month` counts from 0 and may lie outside of its
// year.
[[nodiscard]] qint64 days_to_month(qint64 year, qint64 month);

} // namespace text
