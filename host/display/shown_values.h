// How the program shows values of a database: times, control characters, what a spreadsheet would
// take for a formula.
#pragma once

#include <QByteArray>
#include <QString>
#include <QTimeZone>
#include <QVariant>

namespace host {

// The rows themselves are never changed by it.
struct value_style
{
    bool is_raw = false;               // as stored
    QTimeZone zone = QTimeZone::utc(); // of times
};

// Whether a column of the result tables holds seconds since 1970, or several with ";" between them.
[[nodiscard]] bool is_time_column(const QString &column);

// For people: a time as ISO 8601, anything else as it is. NULL is a null text.
[[nodiscard]] QString shown_value(const QVariant &value, const QString &column,
                                  const value_style &style);

// One field of a line of CSV. NULL is nothing, an empty text a pair of quotes. Unless raw, a text
// that a spreadsheet would take for a formula gets a "'" in front, and control characters are
// written as \uXXXX.
[[nodiscard]] QString csv_field(const QVariant &value, const QString &column,
                                const value_style &style);

} // namespace host
