// Reads one binary property list ("bplist0…") that lies in memory, decoding only what is asked for.
#pragma once

#include "formats/property_list/base/property_list_contents.h"

namespace formats {

// A node is the offset of an object in the file. Loading builds nothing, and a question follows
// only the references that it needs. So objects may share others, or hold themselves.
//
// Absent are: an object that does not lie completely between the header and the offset table, an
// ASCII text with other bytes in it, nulls, fill bytes, identifiers of archives, sets, and
// containers of too many entries. Since objects can be shared, the work for all questions together
// is limited. Once it is used up, texts and entries are absent.
class binary_property_list final : public property_list_reader, public property_list_contents
{
public:
    [[nodiscard]] static bool is_binary(const QByteArray &bytes);

    // Looks at header, trailer and offset table of the list in `bytes`, which must stay, unchanged,
    // until the next load, clear or destruction. False when they do not fit together.
    bool load(const QByteArray &bytes);
    void clear();

    // The top value; 0 when nothing is loaded.
    [[nodiscard]] property_list_node root() const { return root_; }

    [[nodiscard]] value_kind kind(property_list_node node) const override;
    [[nodiscard]] QString class_name(property_list_node node) const override;
    [[nodiscard]] QString text(property_list_node node) const override;
    [[nodiscard]] double double_value(property_list_node node) const override;
    [[nodiscard]] double seconds_since_reference_date(property_list_node node) const override;
    [[nodiscard]] bool is_floating(property_list_node node) const override;
    [[nodiscard]] qint64 integer_value(property_list_node node) const override;
    [[nodiscard]] int count(property_list_node node) const override;
    // The first of equal keys counts; only texts are keys.
    bool look_up(property_list_node dictionary, const QString &key,
                 property_list_node *found) const override;
    bool element(property_list_node array, int index, property_list_node *found) const override;

    void visit_entries(property_list_node dictionary, const entry_visitor &visit) const override;
    [[nodiscard]] QString literal(property_list_node scalar) const override;
    [[nodiscard]] QByteArray data(property_list_node node) const override;

private:
    // One object with its content inside of the file.
    struct object
    {
        uchar type = 0; // the upper half of the object's first byte
        value_kind kind = value_kind::absent;
        quint64 count = 0;              // bytes, units or entries
        const uchar *content = nullptr; // behind the count
    };

    [[nodiscard]] object object_at(quint64 offset) const;
    [[nodiscard]] object scalar_at(uchar marker, quint64 content_offset) const;
    // False when there is no whole count at *content_offset; else moves it behind that.
    bool read_count(quint64 *count, quint64 *content_offset) const;
    // Whether `count` items of `item_bytes` each lie before the offset table.
    [[nodiscard]] bool fits(quint64 offset, quint64 count, quint64 item_bytes) const;
    // Offset of the object that the reference at `reference` names; 0 when there is none.
    [[nodiscard]] quint64 referenced_offset(const uchar *reference) const;
    // False when no work is left for it.
    bool spend(quint64 work) const;
    [[nodiscard]] bool is_key(quint64 offset, const QString &key) const;

    const uchar *bytes_ = nullptr;
    quint64 object_count_ = 0;
    quint64 table_offset_ = 0; // objects end here
    quint64 offset_bytes_ = 0;
    quint64 reference_bytes_ = 0;
    property_list_node root_ = 0;
    mutable quint64 work_left_ = 0;
};

} // namespace formats
