#include "text/dates/iso_8601.h"

#include "text/dates/calendar.h"

#include <cmath>

namespace text {

namespace {

constexpr double furthest_seconds = 3.15e14;
constexpr qint64 ms_per_second = 1000;
constexpr qint64 ms_per_day = 86400 * ms_per_second;

QString two_digits(qint64 value)
{
    return QString::number(value).rightJustified(2, QLatin1Char('0'));
}

QString year_text(qint64 year)
{
    const QString digits = QString::number(std::abs(year)).rightJustified(4, QLatin1Char('0'));
    if (year >= 0 && year <= 9999)
        return digits;
    return QLatin1Char(year < 0 ? '-' : '+') + digits;
}

} // namespace

QString iso_8601_utc_of_ms(const std::optional<qint64> &milliseconds)
{
    if (!milliseconds)
        return {};
    qint64 ms_of_day = *milliseconds % ms_per_day;
    if (ms_of_day < 0)
        ms_of_day += ms_per_day;
    const calendar_day day = calendar_day_of((*milliseconds - ms_of_day) / ms_per_day);
    const qint64 seconds = ms_of_day / ms_per_second;
    const qint64 ms = ms_of_day % ms_per_second;
    QString text = year_text(day.year) + QLatin1Char('-') + two_digits(day.month) +
                   QLatin1Char('-') + two_digits(day.day) + QLatin1Char('T') +
                   two_digits(seconds / 3600) + QLatin1Char(':') + two_digits(seconds / 60 % 60) +
                   QLatin1Char(':') + two_digits(seconds % 60);
    if (ms != 0)
        text += QLatin1Char('.') + QString::number(ms).rightJustified(3, QLatin1Char('0'));
    return text + QLatin1Char('Z');
}

QString iso_8601_utc(double seconds)
{
    if (!std::isfinite(seconds) || std::fabs(seconds) > furthest_seconds)
        return {};
    return iso_8601_utc_of_ms(std::llround(seconds * double(ms_per_second)));
}

} // namespace text
