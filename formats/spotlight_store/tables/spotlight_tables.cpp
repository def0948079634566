#include "formats/spotlight_store/tables/spotlight_tables.h"

#include "formats/spotlight_store/blocks/spotlight_cursor.h"

#include <algorithm>
#include <utility>

namespace formats {

namespace {

constexpr std::string_view file_name_attribute = "_kMDItemFileName";
// Every attribute of every record is looked up once; real indexes lie far below this.
constexpr quint32 direct_indexes = 65536;

} // namespace

spotlight_tables::spotlight_tables(raw_tables raw)
    : raw_(std::move(raw))
{
    raw_.attributes.finish();
    raw_.texts.finish();
    raw_.lists.finish();
    raw_.localized_lists.finish();
    for (const spotlight_table::slot &place : raw_.attributes.slots_by_index()) {
        spotlight_cursor input(raw_.attributes.bytes(place));
        spotlight_attribute_type type;
        type.index = place.index;
        if (!input.read_u8(&type.value_type) || !input.read_u8(&type.flags))
            continue;
        type.name = input.rest();
        type.is_file_name = type.name == file_name_attribute;
        names_files_ |= type.is_file_name;
        attributes_.push_back(type);
        if (type.index < direct_indexes) {
            direct_.resize(type.index + 1);
            direct_.back() = static_cast<quint32>(attributes_.size());
        }
    }
}

const spotlight_attribute_type *spotlight_tables::attribute(quint64 index) const
{
    if (index < direct_.size())
        return direct_[index] == 0 ? nullptr : &attributes_[direct_[index] - 1];
    const auto found = std::lower_bound(
        attributes_.begin(), attributes_.end(), index,
        [](const spotlight_attribute_type &a, quint64 wanted) { return a.index < wanted; });
    return found == attributes_.end() || found->index != index ? nullptr : &*found;
}

std::optional<std::string_view> spotlight_tables::text(quint64 index) const
{
    return raw_.texts.find(index);
}

size_t spotlight_tables::list_length(quint64 index) const
{
    return raw_.lists.find(index).value_or(std::string_view()).size() / sizeof(quint32);
}

size_t spotlight_tables::localized_list_length(quint64 index) const
{
    return raw_.localized_lists.find(index).value_or(std::string_view()).size() / sizeof(quint32);
}

std::vector<std::string_view> spotlight_tables::list(quint64 index) const
{
    return texts_of(raw_.lists, index);
}

std::vector<std::string_view> spotlight_tables::localized_list(quint64 index) const
{
    return texts_of(raw_.localized_lists, index);
}

std::vector<std::string_view> spotlight_tables::texts_of(const spotlight_table &lists,
                                                         quint64 index) const
{
    std::vector<std::string_view> texts;
    spotlight_cursor indexes(lists.find(index).value_or(std::string_view()));
    quint32 text_index = 0;
    while (indexes.read_u32(&text_index)) {
        // A negative index is far above every index that a table can hold.
        if (const auto text = raw_.texts.find(text_index))
            texts.push_back(*text);
    }
    return texts;
}

} // namespace formats
