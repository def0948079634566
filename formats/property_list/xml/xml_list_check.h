// Checks the text of an XML property list as strictly as Foundation reads it, in one pass and
// before any parser sees it: a list is readable as a whole or not at all.
#pragma once

#include <QtGlobal>

namespace formats {

// Where the top value stands.
struct xml_list_extent
{
    char *begin = nullptr; // null when the list is not readable
    char *end = nullptr;
    // Whether CDATA sections occur, i.e. one text may be in several pieces.
    bool has_cdata = false;
    // Whether all texts are of ASCII only.
    bool is_ascii = true;
};

// Checks [begin, end), UTF-8 without a byte-order mark; *end has to be a NUL. Overwrites with
// blanks what carries no value: comments, processing instructions, attributes and the tags of
// <plist>, so that what is left is plain: elements, texts, references and CDATA sections,
// well-formed, no <plist>, dictionaries alternating between <key> and value. What follows the top
// value is not looked at. A list of more than `max_element_count` elements is not readable;
// with CDATA each tag counts as one.
[[nodiscard]] xml_list_extent check_xml_list(char *begin, char *end, qint64 max_element_count);

} // namespace formats
