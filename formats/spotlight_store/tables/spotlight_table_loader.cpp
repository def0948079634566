#include "formats/spotlight_store/tables/spotlight_table_loader.h"

#include "formats/spotlight_store/blocks/spotlight_cursor.h"
#include "formats/spotlight_store/blocks/spotlight_page.h"

#include <algorithm>
#include <vector>

namespace formats {

namespace {

constexpr quint32 attributes_page = 0x11;
constexpr quint32 texts_page = 0x21;
constexpr quint32 lists_page = 0x81;
constexpr quint64 list_element_bytes = 4;

enum class entry_outcome { added, left_out, ends_table };

entry_outcome outcome_of(bool added)
{
    return added ? entry_outcome::added : entry_outcome::left_out;
}

entry_outcome add_attribute(spotlight_cursor *input, quint32 index, spotlight_table *table,
                            spotlight_budget *budget)
{
    const std::string_view start = input->rest();
    quint8 value_type = 0;
    quint8 flags = 0;
    std::string_view name;
    if (!input->read_u8(&value_type) || !input->read_u8(&flags) || !input->take_terminated(&name))
        return entry_outcome::ends_table;
    return outcome_of(table->add(index, start.substr(0, name.size() + 2), budget));
}

entry_outcome add_text(spotlight_cursor *input, quint32 index, spotlight_table *table,
                       spotlight_budget *budget)
{
    std::string_view text;
    if (!input->take_terminated(&text))
        return entry_outcome::ends_table;
    return outcome_of(table->add(index, text, budget));
}

entry_outcome add_list(spotlight_cursor *input, quint32 index, spotlight_table *table,
                       spotlight_budget *budget)
{
    quint64 length = 0;
    std::string_view bytes;
    if (!input->read_varint(&length) || !input->take(length, &bytes))
        return entry_outcome::ends_table;
    // Odd bytes of unknown meaning stand before the indexes, never behind them.
    bytes.remove_prefix(length % list_element_bytes);
    if (bytes.size() / list_element_bytes > max_spotlight_list_length)
        return entry_outcome::left_out;
    return outcome_of(table->add(index, bytes, budget));
}

using entry_reader = entry_outcome (*)(spotlight_cursor *, quint32 index, spotlight_table *,
                                       spotlight_budget *);

// Follows a chain of pages; a block met twice would be a loop. False when it does not get to the
// end.
bool read_page_table(evidence::byte_source &file, quint32 first_block, quint32 page_type,
                     entry_reader add_entry, spotlight_table *table, spotlight_budget *budget)
{
    std::vector<bool> visited(static_cast<size_t>(file.size() / spotlight_block_bytes) + 1);
    quint32 block = first_block;
    while (block != 0) {
        if (block >= visited.size() || visited[block])
            return false;
        visited[block] = true;
        const spotlight_page page = read_table_page(file, block, page_type);
        if (page.state == spotlight_page_state::missing)
            return false;
        spotlight_cursor input(
            {page.content.constData(), static_cast<size_t>(page.content.size())});
        quint32 index = 0;
        while (input.read_u32(&index)) {
            if (add_entry(&input, index, table, budget) == entry_outcome::ends_table ||
                budget->is_spent())
                return false;
        }
        block = page.next_block;
    }
    return true;
}

constexpr qint64 side_header_bytes = 56;
constexpr std::string_view side_signature("\0PataD\0\0", 8);
constexpr quint64 data_bytes_field = 8 + 3 * 4;
constexpr quint64 slot_count_field = 8 + 5 * 4;
constexpr qint64 max_side_data_bytes = qint64(128) * 1024 * 1024;
constexpr quint32 deleted_slot = 1; // no entry can start there

struct side_files
{
    QByteArray offsets;
    QByteArray data;
    bool are_there = false;
};

QByteArray read_side_file(const evidence::byte_folder &folder, const QString &name,
                          qint64 most_bytes, spotlight_budget *budget)
{
    int error = 0;
    const std::unique_ptr<evidence::byte_source> file = folder.open(name, &error);
    if (file == nullptr)
        return {};
    budget->grant_file(file->size());
    return budget->charge(std::min(most_bytes, file->size())) ? file->read(0, most_bytes)
                                                              : QByteArray();
}

// Cut to what is in use, as far as a sound header says so; the rest of the files is padding.
side_files read_side_files(const evidence::byte_folder &folder, int number,
                           spotlight_budget *budget)
{
    const QString name = QStringLiteral("dbStr-%1.map.").arg(number);
    constexpr qint64 max_offset_bytes = qint64(max_spotlight_index + 1) * 4;
    side_files files = {
        read_side_file(folder, name + QLatin1String("offsets"), max_offset_bytes, budget),
        read_side_file(folder, name + QLatin1String("data"), max_side_data_bytes, budget)};
    files.are_there = !files.offsets.isEmpty() && !files.data.isEmpty();
    const QByteArray bytes =
        read_side_file(folder, name + QLatin1String("header"), side_header_bytes, budget);
    const std::string_view header(bytes.constData(), static_cast<size_t>(bytes.size()));
    if (bytes.size() < side_header_bytes ||
        header.substr(0, side_signature.size()) != side_signature)
        return files;
    const quint32 data_bytes = little_endian_u32(header, data_bytes_field);
    const quint64 offset_bytes = quint64(little_endian_u32(header, slot_count_field)) * 4;
    files.data.truncate(
        static_cast<int>(std::min<quint64>(data_bytes, quint64(files.data.size()))));
    files.offsets.truncate(
        static_cast<int>(std::min<quint64>(offset_bytes, quint64(files.offsets.size()))));
    return files;
}

// False when one of its files is missing or empty.
bool read_side_table(const evidence::byte_folder &folder, int number, entry_reader add_entry,
                     spotlight_table *table, spotlight_budget *budget)
{
    const side_files files = read_side_files(folder, number, budget);
    const std::string_view data(files.data.constData(), static_cast<size_t>(files.data.size()));
    spotlight_cursor offsets(
        {files.offsets.constData(), static_cast<size_t>(files.offsets.size())});
    quint32 offset = 0;
    for (quint32 index = 0; offsets.read_u32(&offset) && budget->charge(1); ++index) {
        if (index == 0)
            continue;
        if (offset == 0)
            break;
        if (offset == deleted_slot || offset >= data.size())
            continue;
        spotlight_cursor input(data.substr(offset));
        quint64 length = 0;
        std::string_view entry;
        if (!input.read_leb128(&length) || !input.take(length, &entry))
            continue;
        spotlight_cursor content(entry);
        add_entry(&content, index, table, budget); // an unsound entry costs itself only
    }
    return files.are_there && !budget->is_spent();
}

} // namespace

std::shared_ptr<const spotlight_tables> load_page_tables(evidence::byte_source &file,
                                                         const spotlight_table_blocks &blocks,
                                                         spotlight_budget *budget)
{
    spotlight_tables::raw_tables raw;
    const auto read = [&](quint32 block, quint32 type, entry_reader add, spotlight_table *table) {
        if (!read_page_table(file, block, type, add, table, budget))
            ++raw.incomplete;
    };
    read(blocks.attributes, attributes_page, add_attribute, &raw.attributes);
    read(blocks.texts, texts_page, add_text, &raw.texts);
    read(blocks.lists, lists_page, add_list, &raw.lists);
    read(blocks.localized_lists, lists_page, add_list, &raw.localized_lists);
    return std::make_shared<const spotlight_tables>(std::move(raw));
}

std::shared_ptr<const spotlight_tables> load_side_tables(const evidence::byte_folder &folder,
                                                         spotlight_budget *budget)
{
    spotlight_tables::raw_tables raw;
    const auto read = [&](int number, entry_reader add, spotlight_table *table) {
        if (!read_side_table(folder, number, add, table, budget))
            ++raw.incomplete;
    };
    read(1, add_attribute, &raw.attributes);
    read(2, add_text, &raw.texts);
    read(4, add_list, &raw.lists);
    read(5, add_list, &raw.localized_lists);
    return std::make_shared<const spotlight_tables>(std::move(raw));
}

} // namespace formats
