// File names as texts and as the bytes that the file system holds. QFile's own conversion is not
// used: on macOS it changes how accents are composed, and would give the name of another file.
#pragma once

#include <QByteArray>
#include <QString>

namespace evidence {

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

} // namespace evidence
