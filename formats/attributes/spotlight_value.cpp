#include "formats/attributes/spotlight_value.h"

#include "text/dates/calendar.h"

#include <QByteArray>

#include <algorithm>
#include <cmath>
#include <utility>

namespace formats {

namespace {

// Two pointers that macOS prints in debugging forms. Nothing reads them.
constexpr char pointers[] = "0x7f8000000010 [0x7fff80000000]";
constexpr char list_indent[] = "    ";

constexpr double max_epoch_seconds = 1e11;
constexpr qint64 seconds_per_day = 86400;

constexpr int double_decimals = 20;
constexpr int single_decimals = 10;
constexpr int list_significant_digits = 16;

// At least `digits` of them; a minus sign goes in front.
void append_padded(qint64 number, int digits, QByteArray *text)
{
    const QByteArray written = QByteArray::number(std::abs(number));
    if (number < 0)
        *text += '-';
    text->append(qMax(0, digits - written.size()), '0').append(written);
}

QString date_text(const spotlight_date &date)
{
    if (!is_printable(date))
        return {};
    const auto seconds = static_cast<qint64>(date.epoch_seconds); // drops the fraction
    const qint64 second_of_day = ((seconds % seconds_per_day) + seconds_per_day) % seconds_per_day;
    const text::calendar_day day =
        text::calendar_day_of((seconds - second_of_day) / seconds_per_day);
    QByteArray text;
    text.reserve(32);
    append_padded(day.year, 4, &text);
    for (const auto &[sign, number] :
         {std::pair('-', qint64{day.month}), std::pair('-', qint64{day.day}),
          std::pair(' ', second_of_day / 3600), std::pair(':', second_of_day / 60 % 60),
          std::pair(':', second_of_day % 60)}) {
        text += sign;
        append_padded(number, 2, &text);
    }
    return QString::fromLatin1(text + " +0000");
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
    return std::isfinite(date.epoch_seconds) && std::abs(date.epoch_seconds) <= max_epoch_seconds;
}

bool has_c_string(const QString &text)
{
    return std::all_of(text.cbegin(), text.cend(),
                       [](QChar character) { return character.unicode() < 0x80; });
}

} // namespace formats
