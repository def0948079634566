// Names of Foundation's classes for the values of a property list.
#pragma once

#include "platform/property_list.h"

namespace platform {

// Null for an absent value. Only that of a boolean tells something that the kind does not: who
// reads it compares it with "__NSCFBoolean".
[[nodiscard]] inline QString foundation_class_name(value_kind kind)
{
    switch (kind) {
    case value_kind::text:
        return QStringLiteral("__NSCFString");
    case value_kind::number:
        return QStringLiteral("__NSCFNumber");
    case value_kind::boolean:
        return QStringLiteral("__NSCFBoolean");
    case value_kind::date:
        return QStringLiteral("__NSDate");
    case value_kind::data:
        return QStringLiteral("__NSCFData");
    case value_kind::array:
        return QStringLiteral("__NSCFArray");
    case value_kind::dictionary:
        return QStringLiteral("__NSCFDictionary");
    case value_kind::absent:
        break;
    }
    return {};
}

} // namespace platform
