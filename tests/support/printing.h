// Lets a failed comparison show Qt texts readably.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <ostream>

inline void PrintTo(const QString &text, std::ostream *out)
{
    if (text.isNull())
        *out << "(null text)";
    else
        *out << '"' << text.toUtf8().constData() << '"';
}

inline void PrintTo(const QStringList &list, std::ostream *out)
{
    *out << "(\"" << list.join(QStringLiteral("\", \"")).toUtf8().constData() << "\")";
}
