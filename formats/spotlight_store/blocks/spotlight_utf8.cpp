#include "formats/spotlight_store/blocks/spotlight_utf8.h"

namespace formats {

namespace {

constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";

} // namespace

QString text_from_utf8(std::string_view utf8)
{
    // Qt takes a mark in front for one of the encoding; here it is a part of the text.
    int marks = 0;
    while (utf8.substr(0, byte_order_mark.size()) == byte_order_mark) {
        utf8.remove_prefix(byte_order_mark.size());
        ++marks;
    }
    return QString(marks, QChar(QChar::ByteOrderMark)) +
           QString::fromUtf8(utf8.data(), static_cast<int>(utf8.size()));
}

} // namespace formats
