// What is done with each value that comes out of bytes of a source.
#pragma once

#include "platform/spotlight_value.h"

#include <QString>
#include <QStringList>

#include <cstdlib>
#include <optional>

inline QStringList exercised_attributes()
{
    return {QStringLiteral("kMDItemWhereFroms"), QStringLiteral("kMDItemLastUsedDate"),
            QStringLiteral("kMDItemDateAdded"), QStringLiteral("kMDItemFSLabel"),
            QStringLiteral("kMDItemFSCreationDate")};
}

// A value always has a text, and the text of a list is always ASCII.
inline void exercise(const std::optional<platform::spotlight_value> &value)
{
    if (!value)
        return;
    const QString text = platform::description_text(*value);
    const bool is_list = std::holds_alternative<platform::spotlight_list>(*value);
    if (text.isNull() || (is_list && !platform::has_c_string(text)))
        std::abort();
}
