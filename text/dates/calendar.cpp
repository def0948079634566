#include "text/dates/calendar.h"

namespace text {

namespace {

// Years are counted from March here, so that the leap day is the last of its year.
constexpr qint64 days_from_march_0000 = 719468; // to 1970-01-01
constexpr qint64 days_per_era = 146097;         // 400 years

} // namespace

calendar_day calendar_day_of(qint64 days_since_1970)
{
    const qint64 days = days_since_1970 + days_from_march_0000;
    const qint64 era = (days >= 0 ? days : days - (days_per_era - 1)) / days_per_era;
    const qint64 day_of_era = days - era * days_per_era;
    const qint64 year_of_era =
        (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / 146096) / 365;
    const qint64 day_of_year =
        day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
    const qint64 month_from_march = (5 * day_of_year + 2) / 153;
    const int day = static_cast<int>(day_of_year - (153 * month_from_march + 2) / 5 + 1);
    const int month =
        static_cast<int>(month_from_march < 10 ? month_from_march + 3 : month_from_march - 9);
    return {year_of_era + era * 400 + (month <= 2 ? 1 : 0), month, day};
}

qint64 days_to_month(qint64 year, qint64 month)
{
    qint64 months = year * 12 + month - 2;
    constexpr qint64 era_months = 4800;
    const qint64 eras = (months >= 0 ? months : months - era_months + 1) / era_months;
    months -= eras * era_months;
    const qint64 year_of_era = months / 12;
    const qint64 day_of_year = (153 * (months % 12) + 2) / 5;
    return eras * days_per_era + year_of_era * 365 + year_of_era / 4 - year_of_era / 100 +
           day_of_year - days_from_march_0000;
}

} // namespace text
