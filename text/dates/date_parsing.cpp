#include "text/dates/date_parsing.h"

#include "text/dates/date_conversion.h"

#include <QDate>
#include <QTime>

#include <algorithm>
#include <ctime>

namespace text {

namespace {

constexpr const char *month_names[] = {"jan", "feb", "mar", "apr", "may", "jun",
                                       "jul", "aug", "sep", "oct", "nov", "dec"};

constexpr char formatted_local_date[] = "dd-MMM-yyyy,HH:mm:ss a";

constexpr int half_unknown = -1;

// Walks a pattern and a text side by side.
class wall_clock_reader
{
public:
    wall_clock_reader(const QString &text, QLatin1String pattern)
        : text_(text)
        , pattern_(pattern)
    {
    }

    QDateTime read()
    {
        while (pattern_position_ < pattern_.size()) {
            const char letter = pattern_.data()[pattern_position_];
            if (!read_section(letter, run_length(letter)))
                return {};
        }
        if (text_position_ != text_.size() || !apply_half_of_day())
            return {};
        const QDate date(year_, month_, day_);
        const QTime time(hour_, minute_, second_);
        if (!date.isValid() || !time.isValid())
            return {};
        return {date, time, Qt::UTC};
    }

private:
    int run_length(char letter) const
    {
        int end = pattern_position_;
        while (end < pattern_.size() && pattern_.data()[end] == letter)
            ++end;
        return end - pattern_position_;
    }

    bool read_section(char letter, int length)
    {
        pattern_position_ += length;
        switch (letter) {
        case 'y':
            return number(4, 4, &year_);
        case 'M':
            return length == 3 ? month_name() : number(length, 2, &month_);
        case 'd':
            return number(length, 2, &day_);
        case 'h':
        case 'H':
            counts_to_12_ = letter == 'h';
            return number(length, 2, &hour_);
        case 'm':
            return number(length, 2, &minute_);
        case 's':
            return number(length, 2, &second_);
        case 'A':
            pattern_position_ += 1; // the P that always follows
            return half_of_day();
        case 'a':
            return half_of_day();
        default:
            return literal(letter, length);
        }
    }

    bool literal(char letter, int length)
    {
        for (; length > 0; --length, ++text_position_) {
            if (text_position_ >= text_.size() || text_.at(text_position_) != QLatin1Char(letter))
                return false;
        }
        return true;
    }

    // A plus sign takes the place of a digit, as Qt has it.
    bool number(int fewest_characters, int most_characters, int *value)
    {
        const int start = text_position_;
        const bool has_sign = start < text_.size() && text_.at(start) == QLatin1Char('+');
        text_position_ += has_sign ? 1 : 0;
        const int first_digit = text_position_;
        *value = 0;
        while (text_position_ - start < most_characters && text_position_ < text_.size()) {
            const ushort unit = text_.at(text_position_).unicode();
            if (unit < '0' || unit > '9')
                break;
            *value = *value * 10 + (unit - '0');
            ++text_position_;
        }
        return text_position_ > first_digit && text_position_ - start >= fewest_characters;
    }

    bool word(const char *lower_case)
    {
        const QLatin1String expected(lower_case);
        if (text_.midRef(text_position_, expected.size()).compare(expected, Qt::CaseInsensitive))
            return false;
        text_position_ += expected.size();
        return true;
    }

    bool month_name()
    {
        month_ = 0;
        for (const char *name : month_names) {
            ++month_;
            if (word(name))
                return true;
        }
        return false;
    }

    bool half_of_day()
    {
        half_ = word("am") ? 0 : word("pm") ? 1 : half_unknown;
        return half_ != half_unknown;
    }

    bool apply_half_of_day()
    {
        if (half_ == half_unknown)
            return true;
        if (!counts_to_12_)
            return (hour_ >= 12) == (half_ == 1);
        if (hour_ > 12)
            return false;
        hour_ = hour_ % 12 + 12 * half_;
        return true;
    }

    const QString &text_;
    const QLatin1String pattern_;
    int text_position_ = 0;
    int pattern_position_ = 0;
    int year_ = 1970;
    int month_ = 1;
    int day_ = 1;
    int hour_ = 0;
    int minute_ = 0;
    int second_ = 0;
    int half_ = half_unknown; // 0 before noon, 1 after
    bool counts_to_12_ = false;
};

constexpr int date_size = 10; // yyyy-MM-dd

// Nothing but a clock behind the date: no zone, and nothing that Qt may overlook before a "Z".
bool has_plain_clock(const QString &text)
{
    const QStringRef clock = text.midRef(date_size);
    return std::all_of(clock.cbegin(), clock.cend(), [](QChar sign) {
        return (sign >= QLatin1Char('0') && sign <= QLatin1Char(':')) ||
               QLatin1String("T .,").contains(sign);
    });
}

// Seconds east of UTC that this machine's clocks have at that instant.
qint64 local_offset_at(qint64 seconds)
{
    const auto instant = static_cast<time_t>(seconds);
    std::tm parts = {};
    if (::localtime_r(&instant, &parts) == nullptr)
        return 0;
    return parts.tm_gmtoff;
}

} // namespace

QDateTime parse_wall_clock(const QString &text, QLatin1String pattern)
{
    return wall_clock_reader(text, pattern).read();
}

QDateTime parse_iso_date(const QString &text)
{
    QDateTime parsed = QDateTime::fromString(text, Qt::ISODate);
    if (parsed.isValid() && parsed.timeSpec() != Qt::LocalTime)
        return parsed;
    if (!parsed.isValid() && !has_plain_clock(text))
        return {};
    // UTC has every wall clock, and each of its days starts at midnight; local time may not.
    const QLatin1String zone(text.size() == date_size ? "T00:00:00Z" : "Z");
    const QDateTime in_utc = QDateTime::fromString(text + zone, Qt::ISODate);
    if (!in_utc.isValid())
        return {};
    const bool moved =
        !parsed.isValid() || parsed.date() != in_utc.date() || parsed.time() != in_utc.time();
    return moved ? in_utc : parsed;
}

zoned_text part_from_offset(const QString &text, int time_start)
{
    zoned_text parts;
    int sign = time_start < 0 ? text.size() : time_start;
    while (sign < text.size() && text.at(sign) != QLatin1Char('+') &&
           text.at(sign) != QLatin1Char('-'))
        ++sign;
    if (sign < text.size()) {
        QString offset = text.mid(sign + 1).trimmed();
        offset.remove(QLatin1Char(':'));
        const int seconds = convert_timezone_to_seconds(offset);
        parts.offset_seconds =
            text.at(sign) == QLatin1Char('+') ? qint64{seconds} : -qint64{seconds};
    }
    const QString before = text.left(sign);
    parts.wall_clock = before.left(before.indexOf(QLatin1Char('.'))).trimmed();
    return parts;
}

qint64 epoch_seconds(const QDateTime &utc)
{
    return utc.isValid() ? utc.toMSecsSinceEpoch() / 1000 : 0;
}

qint64 epoch_of_local_wall_clock(const QDateTime &wall_clock)
{
    constexpr qint64 day_seconds = 86400; // more than any offset change but the date line's
    ::tzset();
    QDateTime marked = wall_clock;
    marked.setTimeSpec(Qt::UTC);
    const qint64 wall = epoch_seconds(marked);
    const qint64 offset_before = local_offset_at(wall - day_seconds);
    const qint64 offset_after = local_offset_at(wall + day_seconds);
    const qint64 first = wall - offset_before;
    const qint64 second = wall - offset_after;
    if (local_offset_at(first) == offset_before || local_offset_at(second) != offset_after)
        return first;
    return second;
}

qint64 epoch_from_formatted_local_date(const QString &text)
{
    const QDateTime wall_clock = parse_wall_clock(text, QLatin1String(formatted_local_date));
    return wall_clock.isValid() ? epoch_of_local_wall_clock(wall_clock) : 0;
}

} // namespace text
