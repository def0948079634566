// A property list as JSON.
#pragma once

#include "formats/property_list/property_list_parser.h"

#include <QByteArray>

namespace host {

struct list_json
{
    QByteArray text;      // one value, indented
    bool is_whole = true; // false where null stands for what was left out because of its cost
};

// Keys keep their order, equal ones included. Dates are ISO 8601, data base64, numbers that JSON
// has no form for are texts, and null stands for what the list does not hold completely.
[[nodiscard]] list_json json_of(const formats::property_list_parser &list, qint64 list_bytes);

// A text in quotes.
[[nodiscard]] QByteArray json_text(const QString &text);

} // namespace host
