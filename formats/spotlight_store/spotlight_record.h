// Records of a store: their head, and a walk over their attributes that decodes nothing.
#pragma once

#include "formats/spotlight_store/blocks/spotlight_cursor.h"
#include "formats/spotlight_store/tables/spotlight_tables.h"

#include <string_view>

namespace formats {

struct spotlight_record_head
{
    quint64 id = 0; // file id on the volume, as stored (some stores swap its bytes)
    quint8 flags = 0;
    quint64 item_id = 0; // running number of the index
    quint64 parent_id = 0;
    qint64 updated_microseconds = 0; // since 1970 UTC
};

// Moves the cursor to the first attribute; false when the record is cut short.
bool read_record_head(spotlight_cursor *record, spotlight_record_head *head);

enum spotlight_value_type : quint8 {
    spotlight_boolean = 0,
    spotlight_byte = 2,
    spotlight_int32 = 6,
    spotlight_int64 = 7,
    spotlight_uint64 = 8,
    spotlight_single = 9,
    spotlight_double = 10,
    spotlight_text = 11,
    spotlight_date_value = 12,
    spotlight_data = 14,
    spotlight_table_index = 15
};

// The natural size in bytes of one value of the type; 0 for types without one.
[[nodiscard]] quint64 natural_size(quint8 value_type);

class spotlight_attribute_walk
{
public:
    // `attributes`: the record behind its head. Both must outlive the walk.
    spotlight_attribute_walk(std::string_view attributes, const spotlight_tables &tables)
        : input_(attributes)
        , tables_(tables)
    {
    }

    // Steps to the next attribute. False at the record's end, and where nothing behind can be told:
    // an attribute that no table holds, a type of unknown length, a value that does not fit.
    bool next();
    [[nodiscard]] const spotlight_attribute_type &type() const { return *type_; }
    // The value as stored, with the count or length in front of it if its type has one.
    [[nodiscard]] std::string_view value() const { return value_; }
    // After `next` returned false: bytes that were not understood. 0 for a sound record.
    [[nodiscard]] quint64 bytes_left_over() const { return input_.left(); }

private:
    bool skip_value();

    spotlight_cursor input_;
    const spotlight_tables &tables_;
    const spotlight_attribute_type *type_ = nullptr;
    std::string_view value_;
    quint64 index_ = 0;
    int steps_ = 0;
};

} // namespace formats
