// Times in the forms that artifacts hold them, turned into seconds since 1970 UTC. A text that is
// no time gives 0, as Qt counts an invalid time. Only an empty text and "0", which stand for "no
// time", give an empty text.
#include "text/dates/date_conversion.h"

#include "text/dates/calendar.h"
#include "text/dates/date_parsing.h"

#include <QLocale>

#include <limits>

namespace text {

namespace {

constexpr qint64 seconds_1601_to_1970 = 11644473600;
constexpr qint64 microseconds_per_second = 1000000;
constexpr int epoch_text_size = 10; // digits of seconds since 1970, from 2001 to 2286
constexpr int half_of_day_size = 3; // " AM", " PM"
constexpr char iso_date_signature[] =
    "static QDateTime plugin_static_function::get_datetime_from_string_with_iso_date(QString)";

bool stands_for_no_time(const QString &trimmed)
{
    return trimmed.isEmpty() || trimmed == QLatin1String("0");
}

QString without_fraction(const QString &number)
{
    return number.left(number.indexOf(QLatin1Char('.')));
}

QString epoch_text(const QString &wall_clock, const char *pattern)
{
    const QDateTime utc = parse_wall_clock(wall_clock, QLatin1String(pattern));
    return QString::number(epoch_seconds(utc));
}

QString epoch_text(const zoned_text &text, const char *pattern)
{
    const QDateTime utc = parse_wall_clock(text.wall_clock, QLatin1String(pattern));
    return QString::number(utc.isValid() ? epoch_seconds(utc) - text.offset_seconds : 0);
}

QString two_digits(int number)
{
    return QString::number(number).rightJustified(2, QLatin1Char('0'));
}

} // namespace

QString convert_apple_time_to_epoch(QString value)
{
    value = value.trimmed();
    if (stands_for_no_time(value))
        return {};
    return QString::number(without_fraction(value).toInt() + seconds_1970_to_2001);
}

QString convert_google_time_to_epoch(QString value)
{
    if (value == QLatin1String("0"))
        return {};
    if (value.size() == epoch_text_size)
        return value;
    const auto microseconds = static_cast<qint64>(value.toULongLong());
    return QString::number(microseconds / microseconds_per_second - seconds_1601_to_1970);
}

int convert_timezone_to_seconds(QString offset)
{
    const qint64 hours = offset.left(2).toInt();
    const qint64 minutes = offset.mid(2).toInt();
    const qint64 seconds = (minutes + hours * 60) * 60;
    // No zone is that far from UTC; what does not fit is no offset.
    const bool fits =
        seconds >= std::numeric_limits<int>::min() && seconds <= std::numeric_limits<int>::max();
    return fits ? static_cast<int>(seconds) : 0;
}

QString convert_timestamp_to_human_readable_in_UTC(QString value)
{
    value = value.trimmed();
    if (value.isEmpty())
        return {};
    const QDateTime utc = QDateTime::fromSecsSinceEpoch(without_fraction(value).toInt(), Qt::UTC);
    return QLocale::c().toString(utc, QStringLiteral("dd-MMM-yyyy hh:mm:ss"));
}

QString get_human_readable_time(QString seconds)
{
    const int total = without_fraction(seconds.trimmed()).toInt();
    if (total < 0)
        return {};
    const QString hours = two_digits(total / 3600);
    const QString minutes_and_seconds =
        two_digits(total % 3600 / 60) + QLatin1Char(':') + two_digits(total % 60);
    if (hours == QLatin1String("00"))
        return minutes_and_seconds + QLatin1String(" Min");
    return hours + QLatin1Char(':') + minutes_and_seconds + QLatin1String(" Hrs");
}

QString convert_human_readable_to_epoch_1(QString value)
{
    value = value.trimmed();
    if (stands_for_no_time(value))
        return {};
    QString marker = QStringLiteral(" AM ");
    if (!value.contains(marker))
        marker = QStringLiteral(" PM ");
    const QString zone = value.section(marker, 1, 1);
    const int half = value.lastIndexOf(marker);
    if (half >= 0)
        value.truncate(half + half_of_day_size);
    const QDateTime wall_clock = parse_wall_clock(value, QLatin1String("MMM d, yyyy, h:mm:ss AP"));
    const bool local = wall_clock.isValid() && zone != QLatin1String("UTC");
    return QString::number(local ? epoch_of_local_wall_clock(wall_clock)
                                 : epoch_seconds(wall_clock));
}

QString convert_human_readable_to_epoch_2(QString value)
{
    value = value.trimmed();
    if (stands_for_no_time(value))
        return {};
    const int time_start = value.indexOf(QLatin1Char(' '));
    return epoch_text(part_from_offset(value, time_start), "yyyy-MM-dd hh:mm:ss");
}

QString convert_human_readable_to_epoch_3(QString value)
{
    value = value.trimmed();
    if (stands_for_no_time(value))
        return {};
    value.remove(0, value.indexOf(QLatin1Char(',')) + 1);
    value.truncate(qMax(0, value.lastIndexOf(QLatin1Char(' '))));
    return epoch_text(value.trimmed(), "dd MMM yyyy hh:mm:ss");
}

QString convert_T_Z_time_to_epoch(QString value)
{
    value = value.trimmed();
    if (stands_for_no_time(value))
        return {};
    value.remove(QLatin1Char('Z'));
    value.replace(QLatin1Char('T'), QLatin1Char(' '));
    value = value.trimmed();
    const int time_start = value.indexOf(QLatin1Char(' '));
    zoned_text text = part_from_offset(value, time_start);
    text.wall_clock.remove(QLatin1Char('-')).remove(QLatin1Char(':'));
    const bool has_time = text.wall_clock.contains(QLatin1Char(' '));
    return epoch_text(text, has_time ? "yyyyMMdd hhmmss" : "yyyyMMdd");
}

QDateTime get_datetime_from_string_with_iso_date(QString value, const run::log_sink &log)
{
    log.write("Start ", QString(), iso_date_signature);
    value = value.trimmed();
    QDateTime parsed = parse_iso_date(value);
    if (parsed.isValid())
        return parsed;
    // "date time +0000" is read by some versions of Qt only without the blank before the offset.
    const QStringList pieces = value.split(QLatin1Char(' '));
    if (pieces.size() >= 3)
        parsed = parse_iso_date(pieces[0] + QLatin1Char(' ') + pieces[1] + pieces[2]);
    log.write("End ", QString(), iso_date_signature);
    return parsed;
}

} // namespace text
