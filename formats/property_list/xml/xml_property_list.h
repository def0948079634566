// Reads one XML property list that lies in memory.
#pragma once

#include "formats/property_list/base/property_list_contents.h"

#include <pugixml.hpp>

#include <array>
#include <vector>

namespace formats {

// A node is one of the parser's nodes. The list stays in the bytes that it was loaded from: they
// must stay, unchanged, until the next load, clear or destruction.
class xml_property_list final : public property_list_reader, public property_list_contents
{
public:
    // Reads the list in *bytes, which it changes. False when that is not readable as a whole:
    // unknown elements, a key without a value, broken numbers or dates, entities other than the
    // five of XML, NULs, invalid UTF-8, or more of it than the limits allow.
    bool load(QByteArray *bytes);
    // Forgets the list and gives back its memory.
    void clear();

    // The top value; 0 when nothing is loaded.
    [[nodiscard]] property_list_node root() const;

    [[nodiscard]] value_kind kind(property_list_node node) const override;
    [[nodiscard]] QString class_name(property_list_node node) const override;
    [[nodiscard]] QString text(property_list_node node) const override;
    [[nodiscard]] double double_value(property_list_node node) const override;
    [[nodiscard]] double seconds_since_reference_date(property_list_node node) const override;
    [[nodiscard]] bool is_floating(property_list_node node) const override;
    [[nodiscard]] qint64 integer_value(property_list_node node) const override;
    [[nodiscard]] int count(property_list_node node) const override;
    // The last of equal keys counts.
    bool look_up(property_list_node dictionary, const QString &key,
                 property_list_node *found) const override;
    // Quick for the elements of one array in ascending order.
    bool element(property_list_node array, int index, property_list_node *found) const override;

    void visit_entries(property_list_node dictionary, const entry_visitor &visit) const override;
    [[nodiscard]] QString literal(property_list_node scalar) const override;
    [[nodiscard]] QByteArray data(property_list_node node) const override;

private:
    // The element that was asked for last, and the length of the container that was asked last:
    // without them a walk over an array would take quadratic time.
    struct place
    {
        property_list_node container = 0;
        int index = 0;
        pugi::xml_node element;
    };

    // The entries of one dictionary side by side. Their order is that of the list.
    struct dictionary_entry
    {
        const char *key = nullptr; // in the list
        int key_length = 0;        // -1 when it is not of ASCII or in pieces
        property_list_node key_element = 0;
        property_list_node value = 0;
    };
    struct dictionary_index
    {
        property_list_node dictionary = 0;
        std::vector<dictionary_entry> entries;
    };

    // Null when the dictionary is too large for it.
    [[nodiscard]] const dictionary_index *index_of(property_list_node dictionary) const;
    bool read_entries(pugi::xml_node dictionary, std::vector<dictionary_entry> *entries) const;
    // The text, at least as far as it is handed out.
    [[nodiscard]] QString text_of(pugi::xml_node element) const;

    pugi::xml_document document_;
    QByteArray converted_;
    bool is_loaded_ = false;
    bool has_cdata_ = false;
    bool is_ascii_ = false;
    // Walking the parser's nodes for each of a dozen keys is slow, so the entries are kept side by
    // side. A few dictionaries are kept, since questions alternate between one and those inside it.
    mutable std::array<dictionary_index, 4> indexes_;
    mutable size_t oldest_index_ = 0;
    mutable place last_element_;
    mutable place last_end_;
};

} // namespace formats
