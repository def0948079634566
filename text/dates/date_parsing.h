// Reading wall-clock texts without asking the machine: neither its time zone nor its language
// decides whether a text is a time. Qt's own parsers let the zone refuse or move times that its
// daylight-saving changes skip, and read month names of the user's language.
#pragma once

#include <QDateTime>
#include <QLatin1String>
#include <QString>

namespace text {

// Reads `text` by `pattern`, which uses the letters of Qt's format texts: yyyy, MM, MMM, dd, d, HH,
// hh, h, mm, ss, AP and a; everything else stands for itself. As strict as Qt: doubled letters
// take two digits, single ones take one or two; names are English, in any letter case; hh and h
// count to 12 where the pattern has AP or a; an HH that contradicts AP or a is refused.
// Returns the wall clock marked as UTC, invalid when the text does not follow the pattern.
[[nodiscard]] QDateTime parse_wall_clock(const QString &text, QLatin1String pattern);

// Reads an ISO 8601 text. With a zone ("Z", "+0530") the result carries it. Without one the result
// is in local time, or in UTC where local time has no such wall clock; date() and time() are those
// of the text either way. Invalid for any other text.
[[nodiscard]] QDateTime parse_iso_date(const QString &text);

// A wall-clock text parted from the zone offset behind it.
struct zoned_text
{
    QString wall_clock;        // trimmed, without a fraction of a second
    qint64 offset_seconds = 0; // east of UTC; 0 when the text names no offset
};

// The offset starts at the first "+" or "-" at or after `time_start`; a ":" inside it is ignored.
// A negative `time_start` stands for "has no time, hence no offset".
[[nodiscard]] zoned_text part_from_offset(const QString &text, int time_start);

// Milliseconds since 1970 UTC, divided by 1000 toward zero. 0 for an invalid time, which is what Qt
// counts for one that is marked as UTC.
[[nodiscard]] qint64 epoch_seconds(const QDateTime &utc);

// Seconds since 1970 UTC at which this machine's clocks show `wall_clock`, a valid time whose own
// zone is ignored: the first of the two where clocks were turned back; where they were turned
// forward past it, counted on with the offset that was in force before.
[[nodiscard]] qint64 epoch_of_local_wall_clock(const QDateTime &wall_clock);

// The same for a text that a date formatter of this machine made as "dd-MMM-yyyy,HH:mm:ss a", with
// English names. 0 for any other text.
[[nodiscard]] qint64 epoch_from_formatted_local_date(const QString &text);

} // namespace text
