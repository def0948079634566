// Values of a list's dictionaries, in the forms that rows take.
#pragma once

#include "formats/property_list/base/property_list_value.h"

#include <QString>

#include <cstddef>

namespace extraction {

// A text of a dictionary and the field of the row that it goes to.
template <typename Row> struct key_field
{
    QString key;
    QString Row::*field;
};

// The trimmed text of a key; null when the key is missing or its value is no text. Give the key as
// QStringLiteral, which is not made anew at each call.
[[nodiscard]] QString trimmed_text(const formats::property_list_value &dictionary,
                                   const QString &key);
// The same, cut to whole seconds: the client writes milliseconds since 1970 as text.
[[nodiscard]] QString seconds_text(const formats::property_list_value &dictionary,
                                   const QString &key);
// The value of a key that is a dictionary, else absent.
[[nodiscard]] formats::property_list_value dictionary_of(const formats::property_list_value &parent,
                                                         const QString &key);
// The trimmed "Path" of a dictionary that describes a file or folder; null without one.
[[nodiscard]] QString recorded_path(const formats::property_list_value &parent, const QString &key);

template <typename Row, size_t Count>
void read_texts(const formats::property_list_value &dictionary, const key_field<Row> (&keys)[Count],
                Row *row)
{
    for (const key_field<Row> &entry : keys)
        row->*entry.field = trimmed_text(dictionary, entry.key);
}

} // namespace extraction
