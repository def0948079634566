#include "text/value_filters.h"

#include "text/dates/date_conversion.h"
#include "text/dates/date_parsing.h"
#include "text/text_replace.h"

namespace text {

namespace {

// The second of the pieces into which `separator` parts the text; null when there is only one.
QString second_piece(const QString &text, QLatin1String separator)
{
    const int first_end = text.indexOf(separator);
    if (first_end < 0)
        return {};
    const int start = first_end + separator.size();
    const int end = text.indexOf(separator, start);
    return text.mid(start, end < 0 ? -1 : end - start);
}

// <CFBoolean 0x7fff [0x7fff]>{value = true} gives "true".
QString value_in_braces(const QString &text)
{
    QString value =
        second_piece(second_piece(text.trimmed(), QLatin1String("]>{")), QLatin1String("="));
    value.chop(1); // the closing brace; in a text without one, a character whole
    if (!value.isEmpty() && value.at(value.size() - 1).isHighSurrogate())
        value.chop(1);
    return value.trimmed();
}

// Lone surrogates become "?", a leading byte-order mark goes. The machines of the host encode 8-bit
// texts as UTF-8; naming it keeps a machine that is set to another encoding from losing characters.
QString through_8_bit(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    return QString::fromUtf8(bytes.constData(), bytes.size());
}

} // namespace

// <CFNumber 0x7fff [0x7fff]>{value = +5, type = kCFNumberSInt64Type} gives "5". A negative number
// has no "+" and gives an empty text: rows made so far are to be comparable.
QString get_filtered_number_value(QString text)
{
    text = text.trimmed();
    const int comma = text.indexOf(QLatin1Char(','));
    if (comma < 0)
        return {};
    return second_piece(text.left(comma), QLatin1String("+")).trimmed();
}

QString get_filtered_boolean_value(QString text)
{
    return value_in_braces(text);
}

QString get_filtered_cfstring_value(QString text)
{
    return value_in_braces(text).remove(QLatin1Char('"')).trimmed();
}

QString get_filtered_wherefrom_value(QString text)
{
    text = text.trimmed();
    if (text.isEmpty())
        return {};
    text.remove(QLatin1Char('\n'));
    remove_every(&text, QLatin1String("  "));
    remove_every(&text, QLatin1String("(\""));
    remove_every(&text, QLatin1String("\")"));
    replace_every(&text, QLatin1String("\","), QLatin1String(";"));
    text.replace(QLatin1Char(','), QLatin1Char('\n'));
    text.replace(QLatin1Char('<'), QLatin1Char('('));
    text.replace(QLatin1Char('>'), QLatin1Char(')'));
    text.remove(QLatin1Char('"'));
    replace_every(&text, QLatin1String("\\U2019s"), QLatin1String("'s"));
    return through_8_bit(text).trimmed();
}

QString get_filtered_string_value(QString text, const run::cancellation &cancelled)
{
    text = text.trimmed();
    if (text.isEmpty())
        return {};
    QString values;
    values.reserve(text.size() + 1);
    for (int start = 0; start <= text.size();) {
        if (cancelled.is_requested())
            return {};
        const int comma = text.indexOf(QLatin1Char(','), start);
        const int end = comma < 0 ? text.size() : comma;
        QString piece = text.mid(start, end - start);
        piece.remove(QLatin1Char('(')).remove(QLatin1Char(')')).remove(QLatin1Char('"'));
        values += piece.trimmed();
        values += QLatin1Char(';');
        start = end + 1;
    }
    values.chop(1);
    return values;
}

QString get_filtered_date_value(QString text, const run::log_sink &log)
{
    text = text.trimmed();
    if (text.isEmpty())
        return {};
    QDateTime time = get_datetime_from_string_with_iso_date(text, log);
    time.setTimeSpec(Qt::UTC);
    return QString::number(epoch_seconds(time));
}

} // namespace text
