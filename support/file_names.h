// File names as texts and as the bytes that the file system holds. Not by QFile, which on macOS
// composes and decomposes accents: a name that is stored in the other form would no longer be it.
#pragma once

#include <QByteArray>
#include <QString>

namespace support {

// In the locale's encoding, which on macOS is always UTF-8.
[[nodiscard]] inline QByteArray encoded_name(const QString &name)
{
    return name.toLocal8Bit();
}

[[nodiscard]] inline QString decoded_name(const QByteArray &name)
{
    // Qt takes a leading byte-order mark away, which is a character of the name.
    if (name.startsWith("\xef\xbb\xbf"))
        return QString::fromLocal8Bit('/' + name).mid(1);
    return QString::fromLocal8Bit(name);
}

} // namespace support
