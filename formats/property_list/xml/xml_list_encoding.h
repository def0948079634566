// Brings the text of an XML property list to UTF-8.
#pragma once

#include <QByteArray>

namespace formats {

// The list's text, UTF-8 not checked, without a byte-order mark.
struct xml_list_text
{
    // Into the bytes given or into `converted`; null when the encoding is not supported, or the
    // bytes are not of it, or are too many to convert.
    char *begin = nullptr;
    char *end = nullptr; // *end is a NUL
};

// Reads UTF-8, UTF-16 of either byte order with a byte-order mark or without, and what a header in
// the first byte declares as UTF-8, US-ASCII or ISO-8859-1. A header further behind is not looked
// at, nor is one that writes blanks around the "=". `converted` is reused.
[[nodiscard]] xml_list_text xml_list_as_utf8(QByteArray *bytes, QByteArray *converted);

} // namespace formats
