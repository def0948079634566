#include "formats/spotlight_store/spotlight_record.h"

namespace formats {

namespace {

constexpr int max_attributes = 4096; // of one record
constexpr quint64 end_increment = 0xffffffff;

bool skip_varints(spotlight_cursor *input, quint64 count)
{
    quint64 ignored = 0;
    // Each takes a byte at least; a larger count is forged.
    if (count > input->left())
        return false;
    for (quint64 i = 0; i < count; ++i) {
        if (!input->read_varint(&ignored))
            return false;
    }
    return true;
}

bool skip_prefixed_bytes(spotlight_cursor *input)
{
    quint64 length = 0;
    std::string_view ignored;
    return input->read_varint(&length) && input->take(length, &ignored);
}

} // namespace

bool read_record_head(spotlight_cursor *record, spotlight_record_head *head)
{
    quint64 updated = 0;
    if (!record->read_varint(&head->id) || !record->read_u8(&head->flags) ||
        !record->read_varint(&head->item_id) || !record->read_varint(&head->parent_id) ||
        !record->read_varint(&updated))
        return false;
    head->updated_microseconds = static_cast<qint64>(updated);
    return true;
}

quint64 natural_size(quint8 value_type)
{
    switch (value_type) {
    case spotlight_int32:
    case spotlight_single:
        return 4;
    case spotlight_int64:
    case spotlight_uint64:
    case spotlight_double:
    case spotlight_date_value:
        return 8;
    default:
        return 0;
    }
}

bool spotlight_attribute_walk::next()
{
    const spotlight_cursor start = input_;
    quint64 increment = 0;
    if (++steps_ > max_attributes || !input_.read_varint(&increment) || increment == 0 ||
        increment == end_increment)
        return false;
    // The increment is tested first: a sum of two large ones would wrap.
    if (increment <= max_spotlight_index)
        type_ = tables_.attribute(index_ + increment);
    const std::string_view from = input_.rest();
    if (increment > max_spotlight_index || type_ == nullptr || !skip_value()) {
        input_ = start;
        return false;
    }
    index_ += increment;
    value_ = from.substr(0, from.size() - input_.left());
    return true;
}

bool spotlight_attribute_walk::skip_value()
{
    const bool many = (type_->flags & spotlight_many_flag) != 0;
    const quint64 size = natural_size(type_->value_type);
    quint64 count_times_size = 0;
    std::string_view ignored;
    switch (type_->value_type) {
    case spotlight_boolean:
    case spotlight_byte:
    case spotlight_table_index:
        return skip_varints(&input_, 1);
    case spotlight_int32:
    case spotlight_int64:
    case spotlight_uint64:
        if (!many)
            return skip_varints(&input_, 1);
        return input_.read_varint(&count_times_size) &&
               skip_varints(&input_, count_times_size / size);
    case spotlight_single:
    case spotlight_double:
    case spotlight_date_value:
        return many ? skip_prefixed_bytes(&input_) : input_.take(size, &ignored);
    case spotlight_text:
    case spotlight_data:
        return skip_prefixed_bytes(&input_);
    default:
        return false;
    }
}

} // namespace formats
