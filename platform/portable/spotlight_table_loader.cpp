#include "spotlight_table_loader.h"

#include "spotlight_cursor.h"
#include "spotlight_page.h"

#include <algorithm>
#include <vector>

namespace platform {

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

entry_outcome add_attribute(spotlight_cursor *input, quint32 index, spotlight_table *table)
{
    const std::string_view start = input->rest();
    quint8 value_type = 0;
    quint8 flags = 0;
    std::string_view name;
    if (!input->read_u8(&value_type) || !input->read_u8(&flags) || !input->take_terminated(&name))
        return entry_outcome::ends_table;
    return outcome_of(table->add(index, start.substr(0, name.size() + 2)));
}

entry_outcome add_text(spotlight_cursor *input, quint32 index, spotlight_table *table)
{
    std::string_view text;
    if (!input->take_terminated(&text))
        return entry_outcome::ends_table;
    return outcome_of(table->add(index, text));
}

entry_outcome add_list(spotlight_cursor *input, quint32 index, spotlight_table *table)
{
    quint64 length = 0;
    std::string_view bytes;
    if (!input->read_varint(&length) || !input->take(length, &bytes))
        return entry_outcome::ends_table;
    // Odd bytes of unknown meaning stand before the indexes, never behind them.
    bytes.remove_prefix(length % list_element_bytes);
    if (bytes.size() / list_element_bytes > most_spotlight_list_length)
        return entry_outcome::left_out;
    return outcome_of(table->add(index, bytes));
}

using entry_reader = entry_outcome (*)(spotlight_cursor *, quint32 index, spotlight_table *);

// Follows a chain of pages; a block met twice would be a loop.
spotlight_table page_table(byte_source &file, quint32 first_block, quint32 page_type,
                           entry_reader add_entry)
{
    spotlight_table table;
    std::vector<bool> visited(static_cast<size_t>(file.size() / spotlight_block_bytes) + 1);
    quint32 block = first_block;
    while (block != 0 && block < visited.size() && !visited[block]) {
        visited[block] = true;
        const spotlight_page page = read_table_page(file, block, page_type);
        spotlight_cursor input(
            {page.content.constData(), static_cast<size_t>(page.content.size())});
        quint32 index = 0;
        while (input.read_u32(&index)) {
            if (add_entry(&input, index, &table) == entry_outcome::ends_table)
                return table;
        }
        block = page.next_block;
    }
    return table;
}

constexpr qint64 side_header_bytes = 56;
constexpr std::string_view side_signature("\0PataD\0\0", 8);
constexpr quint64 data_bytes_field = 8 + 3 * 4;
constexpr quint64 slot_count_field = 8 + 5 * 4;
constexpr qint64 most_side_data_bytes = qint64(128) * 1024 * 1024;
constexpr quint32 deleted_slot = 1; // no entry can start there

struct side_files
{
    QByteArray offsets;
    QByteArray data;
};

QByteArray read_side_file(const byte_folder &folder, const QString &name, qint64 most_bytes)
{
    const std::unique_ptr<byte_source> file = folder.open(name);
    return file == nullptr ? QByteArray() : file->read(0, most_bytes);
}

// Cut to what is in use, as far as a sound header says so; the rest of the files is padding.
side_files read_side_files(const byte_folder &folder, int number)
{
    const QString name = QStringLiteral("dbStr-%1.map.").arg(number);
    constexpr qint64 most_offset_bytes = qint64(most_spotlight_index + 1) * 4;
    side_files files = {read_side_file(folder, name + QLatin1String("offsets"), most_offset_bytes),
                        read_side_file(folder, name + QLatin1String("data"), most_side_data_bytes)};
    const QByteArray bytes =
        read_side_file(folder, name + QLatin1String("header"), side_header_bytes);
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

spotlight_table side_table(const byte_folder &folder, int number, entry_reader add_entry)
{
    spotlight_table table;
    const side_files files = read_side_files(folder, number);
    const std::string_view data(files.data.constData(), static_cast<size_t>(files.data.size()));
    spotlight_cursor offsets(
        {files.offsets.constData(), static_cast<size_t>(files.offsets.size())});
    quint32 offset = 0;
    for (quint32 index = 0; offsets.read_u32(&offset); ++index) {
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
        add_entry(&content, index, &table); // an unsound entry costs itself only
    }
    return table;
}

} // namespace

std::shared_ptr<const spotlight_tables> load_page_tables(byte_source &file,
                                                         const spotlight_table_blocks &blocks)
{
    spotlight_tables::raw_tables raw;
    raw.attributes = page_table(file, blocks.attributes, attributes_page, add_attribute);
    raw.texts = page_table(file, blocks.texts, texts_page, add_text);
    raw.lists = page_table(file, blocks.lists, lists_page, add_list);
    raw.localized_lists = page_table(file, blocks.localized_lists, lists_page, add_list);
    return std::make_shared<const spotlight_tables>(std::move(raw));
}

std::shared_ptr<const spotlight_tables> load_side_tables(const byte_folder &folder)
{
    spotlight_tables::raw_tables raw;
    raw.attributes = side_table(folder, 1, add_attribute);
    raw.texts = side_table(folder, 2, add_text);
    raw.lists = side_table(folder, 4, add_list);
    raw.localized_lists = side_table(folder, 5, add_list);
    return std::make_shared<const spotlight_tables>(std::move(raw));
}

} // namespace platform
