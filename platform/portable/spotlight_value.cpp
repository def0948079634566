#include "platform/spotlight_value.h"

#include <QByteArray>

#include <algorithm>
#include <cmath>

namespace platform {

namespace {

// Two pointers that macOS prints in debugging forms. Nothing reads them.
constexpr char pointers[] = "0x7f8000000010 [0x7fff80000000]";
constexpr char list_indent[] = "    ";

constexpr double most_epoch_seconds = 1e11;
constexpr qint64 seconds_per_day = 86400;

constexpr int double_decimals = 20;
constexpr int single_decimals = 10;
constexpr int list_significant_digits = 16;

struct calendar_day
{
    qint64 year;
    int month;
    int day;
};

// The Gregorian calendar carried on to the past, with a year 0, as macOS prints dates. Counts years
// from March, so that the leap day is the last of a year.
calendar_day calendar_day_of(qint64 days_since_1970)
{
    constexpr qint64 days_from_march_0000 = 719468;
    constexpr qint64 days_per_era = 146097; // 400 years
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

QString padded(qint64 number, int digits)
{
    const QString text = QString::number(std::abs(number)).rightJustified(digits, QLatin1Char('0'));
    return number < 0 ? QLatin1Char('-') + text : text;
}

QString date_text(const spotlight_date &date)
{
    if (!is_printable(date))
        return {};
    const auto seconds = static_cast<qint64>(date.epoch_seconds); // drops the fraction
    const qint64 second_of_day = ((seconds % seconds_per_day) + seconds_per_day) % seconds_per_day;
    const calendar_day day = calendar_day_of((seconds - second_of_day) / seconds_per_day);
    return padded(day.year, 4) + QLatin1Char('-') + padded(day.month, 2) + QLatin1Char('-') +
           padded(day.day, 2) + QLatin1Char(' ') + padded(second_of_day / 3600, 2) +
           QLatin1Char(':') + padded(second_of_day / 60 % 60, 2) + QLatin1Char(':') +
           padded(second_of_day % 60, 2) + QLatin1String(" +0000");
}

QString debugging_form(const char *class_name, const QString &content)
{
    return QLatin1Char('<') + QLatin1String(class_name) + QLatin1Char(' ') +
           QLatin1String(pointers) + QLatin1String(">{") + content + QLatin1Char('}');
}

// QByteArray::number knows no locale, unlike printf once an application has set one.
QString floating_digits(const spotlight_floating &number)
{
    if (std::isnan(number.value))
        return QStringLiteral("nan");
    const QLatin1Char sign(std::signbit(number.value) ? '-' : '+');
    if (std::isinf(number.value))
        return sign + QStringLiteral("infinity");
    if (number.value == 0.0)
        return sign + QStringLiteral("0.0");
    const int decimals = number.single_precision ? single_decimals : double_decimals;
    return sign + QString::fromLatin1(QByteArray::number(std::abs(number.value), 'f', decimals));
}

QString number_form(const QString &digits, const char *type)
{
    return debugging_form("CFNumber", QLatin1String("value = ") + digits +
                                          QLatin1String(", type = kCFNumber") +
                                          QLatin1String(type) + QLatin1String("Type"));
}

bool is_ascii_letter_or_digit(QChar character)
{
    const ushort unit = character.unicode();
    return (unit >= '0' && unit <= '9') || (unit >= 'A' && unit <= 'Z') ||
           (unit >= 'a' && unit <= 'z');
}

QString escaped(QChar character)
{
    const ushort unit = character.unicode();
    switch (unit) {
    case '"':
        return QStringLiteral("\\\"");
    case '\\':
        return QStringLiteral("\\\\");
    case '\n':
        return QStringLiteral("\\n");
    case '\t':
        return QStringLiteral("\\t");
    case '\r':
        return QStringLiteral("\\r");
    case '\a':
        return QStringLiteral("\\a");
    case '\b':
        return QStringLiteral("\\b");
    case '\v':
        return QStringLiteral("\\v");
    case '\f':
        return QStringLiteral("\\f");
    default:
        break;
    }
    if (unit >= 0x20 && unit <= 0x7e)
        return character;
    return QLatin1String("\\U") + QString::number(unit, 16).rightJustified(4, QLatin1Char('0'));
}

QString list_text(const QString &text)
{
    if (!text.isEmpty() && std::all_of(text.cbegin(), text.cend(), is_ascii_letter_or_digit))
        return text;
    QString quoted(QLatin1Char('"'));
    quoted.reserve(text.size() + 2);
    for (const QChar character : text)
        quoted += escaped(character);
    return quoted + QLatin1Char('"');
}

// How a value prints as an element of a list; null when it has no text.
struct list_element
{
    QString operator()(const QString &text) const { return list_text(text); }
    QString operator()(qint64 number) const { return list_text(QString::number(number)); }
    QString operator()(const spotlight_floating &number) const
    {
        return list_text(
            QString::fromLatin1(QByteArray::number(number.value, 'g', list_significant_digits)));
    }
    QString operator()(bool value) const
    {
        return value ? QStringLiteral("1") : QStringLiteral("0");
    }
    QString operator()(const spotlight_date &date) const
    {
        const QString text = date_text(date);
        return text.isNull() ? text : list_text(text);
    }
};

struct description
{
    QString operator()(const QString &text) const
    {
        return debugging_form("CFString", QLatin1String("contents = \"") + text + QLatin1Char('"'));
    }
    QString operator()(qint64 number) const
    {
        const QString digits = QString::number(number);
        return number_form(number < 0 ? digits : QLatin1Char('+') + digits, "SInt64");
    }
    QString operator()(const spotlight_floating &number) const
    {
        return number_form(floating_digits(number),
                           number.single_precision ? "Float32" : "Float64");
    }
    QString operator()(bool value) const
    {
        return debugging_form("CFBoolean", value ? QStringLiteral("value = true")
                                                 : QStringLiteral("value = false"));
    }
    QString operator()(const spotlight_date &date) const { return date_text(date); }
    QString operator()(const spotlight_list &list) const
    {
        QStringList lines;
        for (const spotlight_scalar &scalar : list) {
            const QString text = std::visit(list_element(), scalar);
            if (!text.isNull())
                lines += QLatin1String(list_indent) + text;
        }
        if (lines.isEmpty())
            return {};
        return QLatin1String("(\n") + lines.join(QLatin1String(",\n")) + QLatin1String("\n)");
    }
};

} // namespace

QString description_text(const spotlight_value &value)
{
    return std::visit(description(), value);
}

bool is_printable(const spotlight_date &date)
{
    return std::isfinite(date.epoch_seconds) && std::abs(date.epoch_seconds) <= most_epoch_seconds;
}

bool has_c_string(const QString &text)
{
    return std::all_of(text.cbegin(), text.cend(),
                       [](QChar character) { return character.unicode() < 0x80; });
}

} // namespace platform
