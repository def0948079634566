// What an attribute shows, for comparing in tests.
#pragma once

#include "platform/spotlight_value.h"

#include <QByteArray>

#include <sys/xattr.h>

#include <optional>

// The description as the filters see it, without pointers; "absent" when there is none.
inline QString shown_attribute(const std::optional<platform::spotlight_value> &value)
{
    if (!value)
        return QStringLiteral("absent");
    QString form = platform::description_text(*value);
    const int end = form.indexOf(QLatin1String("]>{"));
    return end < 0 ? form : form.mid(end + 2);
}

// False where the file system of the test folder refuses attributes.
inline bool set_attribute(const QByteArray &encoded_path, const QByteArray &name,
                          const QByteArray &value)
{
#ifdef __APPLE__
    return ::setxattr(encoded_path.constData(), name.constData(), value.constData(),
                      static_cast<size_t>(value.size()), 0, 0) == 0;
#else
    return ::setxattr(encoded_path.constData(), name.constData(), value.constData(),
                      static_cast<size_t>(value.size()), 0) == 0;
#endif
}
