// Escapes in printed texts, names of OS versions, differences of lists.
#include "plugin_static_function.h"

#include <QSet>

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

// The number at the start of a piece of a version: "15 (19H2)" gives "15".
QString leading_number(const QString &piece)
{
    int end = 0;
    while (end < piece.size() && hex_digit(piece.at(end)) >= 0 && hex_digit(piece.at(end)) < 10)
        ++end;
    return piece.left(end);
}

} // namespace

// Decodes \Uxxxx, surrogate pairs included. An escape that stands for no character stays as it is.
QString plugin_static_function::convert_string_to_unicode(QString text)
{
    QString decoded;
    decoded.reserve(text.size());
    int copied = 0;
    for (int escape = next_escape(text, 0); escape < text.size();
         escape = next_escape(text, copied)) {
        app_debug(QStringLiteral(" : running"), QLatin1String(unicode_signature));
        decoded.append(text.constData() + copied, escape - copied);
        int taken = append_escaped(text, escape, &decoded);
        if (taken == 0) {
            // Looking at this place again would never end.
            app_debug(QStringLiteral(" : infinite loop cross"), QLatin1String(unicode_signature));
            taken = escape_mark_size;
            decoded.append(text.constData() + escape, taken);
        }
        copied = escape + taken;
    }
    decoded.append(text.constData() + copied, text.size() - copied);
    return decoded;
}

// The version by which the host picks what to scan: of the current source's full version, the
// number that stands for a major release. `text` names the scheme, a suffix behind it ("iOS_UID")
// does not count. "macOS": 10.15.7 gives 10.15, 11.2.3 gives 11; "iOS" and "winOS": the first
// number. Versions may be written with "_" (10_15_7) and with words around them. Null for any
// other scheme and for a source without a version.
QString plugin_static_function::get_source_os_scan_version(QString text)
{
    const QString scheme = text.trimmed();
    const bool mac = scheme.startsWith(QLatin1String("macOS"));
    if (!mac && !scheme.startsWith(QLatin1String("iOS")) &&
        !scheme.startsWith(QLatin1String("winOS")))
        return {};
    QString version = source_os_version_full;
    version.replace(QLatin1Char('_'), QLatin1Char('.'));
    int start = 0;
    while (start < version.size() && leading_number(version.mid(start, 1)).isEmpty())
        ++start;
    const QStringList pieces = version.mid(start).split(QLatin1Char('.'));
    QString major = leading_number(pieces[0]);
    if (!mac || major != QLatin1String("10") || pieces.size() < 2)
        return major;
    const QString minor = leading_number(pieces[1]);
    return minor.isEmpty() ? major : major + QLatin1Char('.') + minor;
}

QStringList plugin_static_function::get_unmatched_varible_list_of_parentlist(QStringList parent,
                                                                             QStringList child)
{
    const QSet<QString> known(child.cbegin(), child.cend());
    QStringList unmatched;
    for (const QString &item : qAsConst(parent)) {
        if (bool_cancel_extraction)
            break;
        if (!known.contains(item))
            unmatched.append(item);
    }
    return unmatched;
}
