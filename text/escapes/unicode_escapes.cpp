#include "text/escapes/unicode_escapes.h"

namespace text {

namespace {

constexpr char unicode_signature[] =
    "static QString plugin_static_function::convert_string_to_unicode(QString)";
constexpr int escape_size = 6;      // \U and four digits
constexpr int escape_mark_size = 2; // \U

int hex_digit(QChar digit)
{
    const ushort unit = digit.unicode();
    if (unit >= '0' && unit <= '9')
        return unit - '0';
    if (unit >= 'a' && unit <= 'f')
        return unit - 'a' + 10;
    if (unit >= 'A' && unit <= 'F')
        return unit - 'A' + 10;
    return -1;
}

// The UTF-16 unit that the escape at `position` stands for; 0 when there is none.
ushort escaped_unit(const QString &text, int position)
{
    if (text.midRef(position, escape_mark_size) != QLatin1String("\\U") ||
        position + escape_size > text.size())
        return 0;
    int unit = 0;
    for (int i = escape_mark_size; i < escape_size; ++i) {
        const int digit = hex_digit(text.at(position + i));
        if (digit < 0)
            return 0;
        unit = unit * 16 + digit;
    }
    return static_cast<ushort>(unit);
}

// Appends the character that the escape at `position` stands for and returns how much of the text
// it takes; 0 when it stands for none: no digits, half of a surrogate pair, or the NUL that would
// end the text for its readers.
int append_escaped(const QString &text, int position, QString *decoded)
{
    const QChar unit(escaped_unit(text, position));
    if (unit.isNull() || unit.isLowSurrogate())
        return 0;
    if (!unit.isHighSurrogate()) {
        decoded->append(unit);
        return escape_size;
    }
    const QChar second(escaped_unit(text, position + escape_size));
    if (!second.isLowSurrogate())
        return 0;
    decoded->append(unit).append(second);
    return 2 * escape_size;
}

// The position of the next backslash that starts "\U"; text.size() when there is none. A doubled
// backslash is a printed backslash: what follows it is no escape.
int next_escape(const QString &text, int from)
{
    while (true) {
        const int backslash = text.indexOf(QLatin1Char('\\'), from);
        if (backslash < 0 || backslash + 1 >= text.size())
            return text.size();
        if (text.at(backslash + 1) == QLatin1Char('U'))
            return backslash;
        from = backslash + 2;
    }
}

} // namespace

QString convert_string_to_unicode(const QString &text, const run::log_sink &log)
{
    QString decoded;
    decoded.reserve(text.size());
    int copied = 0;
    for (int escape = next_escape(text, 0); escape < text.size();
         escape = next_escape(text, copied)) {
        log.write(" : running", QString(), unicode_signature);
        decoded.append(text.constData() + copied, escape - copied);
        int taken = append_escaped(text, escape, &decoded);
        if (taken == 0) {
            // Looking at this place again would never end.
            log.write(" : infinite loop cross", QString(), unicode_signature);
            taken = escape_mark_size;
            decoded.append(text.constData() + escape, taken);
        }
        copied = escape + taken;
    }
    decoded.append(text.constData() + copied, text.size() - copied);
    return decoded;
}

} // namespace text
