#include "host/display/shown_values.h"

#include "log/visible_text.h"

#include <QDateTime>
#include <QSet>
#include <QStringList>

namespace host {

namespace {

// A NUL would end the text for most readers.
QString without_nul(QString text)
{
    return text.replace(QChar(0), QChar(0x2400));
}

QString shown_time(const QString &seconds, const QTimeZone &zone)
{
    constexpr qint64 furthest_seconds = 253402300799; // the end of year 9999
    bool is_number = false;
    const qint64 number = seconds.toLongLong(&is_number);
    if (!is_number || qAbs(number) > furthest_seconds)
        return seconds;
    const bool is_utc = zone == QTimeZone::utc(); // then a "Z" ends the text
    return (is_utc ? QDateTime::fromSecsSinceEpoch(number, Qt::UTC)
                   : QDateTime::fromSecsSinceEpoch(number, zone))
        .toString(Qt::ISODate);
}

bool is_formula(const QString &text)
{
    return !text.isEmpty() && QStringLiteral("=+-@\t\r").contains(text.at(0));
}

} // namespace

bool is_time_column(const QString &column)
{
    static const QSet<QString> columns = {QStringLiteral("access_timestamp"),
                                          QStringLiteral("transfer_timestamp"),
                                          QStringLiteral("remote_modification_date"),
                                          QStringLiteral("date_added"),
                                          QStringLiteral("content_modification_date"),
                                          QStringLiteral("content_creation_date"),
                                          QStringLiteral("fs_creation_date"),
                                          QStringLiteral("fs_content_change_date"),
                                          QStringLiteral("last_used_date"),
                                          QStringLiteral("first_date"),
                                          QStringLiteral("last_date"),
                                          QStringLiteral("used_dates"),
                                          QStringLiteral("exp_time")};
    return columns.contains(column);
}

QString shown_value(const QVariant &value, const QString &column, const value_style &style)
{
    if (!value.isValid())
        return {};
    const QString text = value.toString();
    if (style.is_raw)
        return text;
    if (!is_time_column(column))
        return without_nul(text);
    QStringList times = text.split(QLatin1Char(';'));
    for (QString &time : times)
        time = shown_time(time, style.zone);
    return times.join(QLatin1Char(';'));
}

QString csv_field(const QVariant &value, const QString &column, const value_style &style)
{
    if (!value.isValid())
        return {};
    QString text = shown_value(value, column, style);
    if (!style.is_raw) {
        const bool would_compute = is_formula(text);
        text = logging::visible_text(text);
        if (would_compute)
            text.prepend(QLatin1Char('\''));
    }
    return QLatin1Char('"') + text.replace(QLatin1Char('"'), QLatin1String("\"\"")) +
           QLatin1Char('"');
}

} // namespace host
