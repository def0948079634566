// Names of Foundation's classes for the values of a property list.
#pragma once

#include "formats/property_list/base/property_list_value.h"

namespace formats {

// Null for an absent value. Callers compare the result with "__NSCFBoolean" to tell a boolean from
// a number.
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

} // namespace formats
