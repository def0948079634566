// Values as extended attributes hold them.
#pragma once

#include "samples/apple_double_builder.h"
#include "samples/binary_list_builder.h"

inline QByteArray list_of_texts(const std::vector<QString> &texts)
{
    binary_list_builder builder;
    std::vector<int> elements;
    elements.reserve(texts.size());
    for (const QString &text : texts)
        elements.push_back(builder.wide_text(text));
    return builder.list(static_cast<quint64>(builder.array(elements)));
}

inline QByteArray list_of_object(const QByteArray &object)
{
    binary_list_builder builder;
    return builder.list(static_cast<quint64>(builder.raw(object)));
}

inline QByteArray date_object(double seconds_since_2001)
{
    quint64 bits = 0;
    std::memcpy(&bits, &seconds_since_2001, sizeof bits);
    return '\x33' + big_endian(bits);
}

inline QByteArray last_used(qint64 seconds, qint64 nanoseconds)
{
    QByteArray bytes(16, '\0');
    qToLittleEndian(seconds, bytes.data());
    qToLittleEndian(nanoseconds, bytes.data() + 8);
    return bytes;
}
