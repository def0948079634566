// Reads the bytes of one property list, XML or binary, whichever it is.
#pragma once

#include "formats/property_list/binary/binary_property_list.h"
#include "formats/property_list/base/property_list_value.h"
#include "formats/property_list/xml/xml_property_list.h"

#include <QByteArray>

namespace evidence {
class evidence_file;
}

namespace formats {

// Reuse one object for many lists: it keeps its buffers. Nothing throws: where memory is lacking,
// bytes are no list.
class property_list_parser
{
public:
    property_list_parser();

    // Each forgets the former list. The top value is absent when the bytes are no list, or more
    // than one may have.
    void parse_file(evidence::evidence_file *open_file);
    void parse_copy(const QByteArray &bytes);
    // Takes the bytes and leaves a former buffer in their place: large lists are not kept twice.
    void parse_swapped(QByteArray *bytes);
    // Forgets the list, but not the buffers.
    void forget()
    {
        reader_ = nullptr;
        contents_ = nullptr;
    }

    // The top value; absent when no list was read.
    [[nodiscard]] property_list_value root() const
    {
        return reader_ == nullptr ? property_list_value() : property_list_value(reader_, root_);
    }

    // Everything that the list holds; null when no list was read.
    [[nodiscard]] const property_list_contents *contents() const { return contents_; }
    [[nodiscard]] property_list_node root_node() const { return root_; }
    // The value at a node of the list that was read last.
    [[nodiscard]] property_list_value at(property_list_node node) const { return {reader_, node}; }

private:
    // `fill` gets the empty buffer and returns whether it holds a list's bytes afterwards.
    template <typename Fill> void parse(Fill fill);
    void empty_buffers();
    void parse_buffer();

    // Its memory is reserved, so that emptying it does not give that back.
    QByteArray bytes_;
    xml_property_list xml_;
    binary_property_list binary_;
    const property_list_reader *reader_ = nullptr;
    const property_list_contents *contents_ = nullptr;
    property_list_node root_ = 0;
};

} // namespace formats
