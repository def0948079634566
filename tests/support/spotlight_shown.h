// Short readable forms of metadata values, for comparisons in tests.
#pragma once

#include "platform/spotlight_value.h"

#include <optional>

namespace test_support {

inline QString shown_scalar(const QString &text)
{
    return QLatin1Char('\'') + text + QLatin1Char('\'');
}

inline QString shown_scalar(qint64 number)
{
    return QString::number(number);
}

inline QString shown_scalar(const platform::spotlight_floating &number)
{
    return QString::number(number.value, 'g', 17) +
           QLatin1String(number.single_precision ? "f" : "d");
}

inline QString shown_scalar(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

inline QString shown_scalar(const platform::spotlight_date &date)
{
    return QLatin1Char('@') + QString::number(date.epoch_seconds, 'f', 3);
}

inline QString shown_scalar(const platform::spotlight_list &list)
{
    QStringList elements;
    for (const platform::spotlight_scalar &element : list)
        elements << std::visit([](const auto &own) { return shown_scalar(own); }, element);
    return QLatin1Char('[') + elements.join(QLatin1String(", ")) + QLatin1Char(']');
}

// 'text', 5, 1.5d, 1.5f (single precision), true, @epoch seconds, [list]; "none" for no value.
inline QString shown(const std::optional<platform::spotlight_value> &value)
{
    if (!value)
        return QStringLiteral("none");
    return std::visit([](const auto &own) { return shown_scalar(own); }, *value);
}

} // namespace test_support
