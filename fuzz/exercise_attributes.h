// Uses a value that was read from bytes of a source.
#pragma once

#include "formats/attributes/spotlight_value.h"

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
inline void exercise(const std::optional<formats::spotlight_value> &value)
{
    if (!value)
        return;
    const QString text = formats::description_text(*value);
    const bool is_list = std::holds_alternative<formats::spotlight_list>(*value);
    if (text.isNull() || (is_list && !formats::has_c_string(text)))
        std::abort();
}
