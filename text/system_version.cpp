#include "text/system_version.h"

#include <QStringList>

namespace text {

namespace {

// The number at the start of a piece of a version: "15 (19H2)" gives "15".
QString leading_number(const QString &piece)
{
    int end = 0;
    while (end < piece.size() && piece.at(end) >= QLatin1Char('0') &&
           piece.at(end) <= QLatin1Char('9'))
        ++end;
    return piece.left(end);
}

} // namespace

QString scan_version(const QString &scheme_text, const QString &full_version)
{
    const QString scheme = scheme_text.trimmed();
    const bool mac = scheme.startsWith(QLatin1String("macOS"));
    if (!mac && !scheme.startsWith(QLatin1String("iOS")) &&
        !scheme.startsWith(QLatin1String("winOS")))
        return {};
    QString version = full_version;
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

} // namespace text
