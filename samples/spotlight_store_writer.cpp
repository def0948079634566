#include "samples/spotlight_store_writer.h"

#include <QtEndian>

#include <lz4.h>
#include <zlib.h>

#include <algorithm>
#include <cstring>

namespace samples {

namespace {

constexpr int block_bytes = 0x1000;
constexpr size_t entries_a_table_page = 6; // few, so that tables are chains
constexpr int full_page_bytes = 60000;
constexpr quint32 table_types[] = {0x11, 0x21, 0x81, 0x81};
constexpr int table_fields[] = {48, 52, 60, 64};
constexpr int side_numbers[] = {1, 2, 4, 5};

QByteArray padded(QByteArray bytes, int unit)
{
    const int over = bytes.size() % unit;
    if (over != 0)
        bytes.append(QByteArray(unit - over, '\0'));
    return bytes;
}

template <typename number> QByteArray little(number value)
{
    char bytes[sizeof value];
    qToLittleEndian(value, bytes);
    return QByteArray(bytes, int(sizeof value));
}

QByteArray leb128(quint64 value)
{
    QByteArray bytes;
    for (; value >= 0x80; value >>= 7)
        bytes.append(char(0x80 | (value & 0x7f)));
    return bytes.append(char(value));
}

QByteArray lz4(const QByteArray &plain, const char *history, int history_bytes)
{
    QByteArray packed(LZ4_compressBound(plain.size()), '\0');
    LZ4_stream_t *stream = LZ4_createStream();
    LZ4_loadDict(stream, history, history_bytes);
    const int size = LZ4_compress_fast_continue(stream, plain.constData(), packed.data(),
                                                plain.size(), packed.size(), 1);
    LZ4_freeStream(stream);
    return packed.left(size);
}

// A packed frame, a stored one, and a packed one that refers back to both.
QByteArray lz4_frames(const QByteArray &plain)
{
    const int third = plain.size() / 3;
    const QByteArray head = lz4(plain.left(third), nullptr, 0);
    const QByteArray tail = lz4(plain.mid(2 * third), plain.constData(), 2 * third);
    return "bv41" + little_u32(quint32(third)) + little_u32(quint32(head.size())) + head + "bv4-" +
           little_u32(quint32(third)) + plain.mid(third, third) + "bv41" +
           little_u32(quint32(plain.size() - 2 * third)) + little_u32(quint32(tail.size())) + tail +
           "bv4$";
}

quint32 packing_bits(packing how)
{
    switch (how) {
    case packing::lz4_frames:
    case packing::lz4_block:
        return 0x1000;
    case packing::lzfse:
        return 0x2000;
    default:
        return 0;
    }
}

QByteArray list_entry(const std::vector<qint32> &texts, const QByteArray &odd_bytes)
{
    QByteArray indexes = odd_bytes;
    for (const qint32 text : texts)
        indexes += little_u32(quint32(text));
    return prefixed(indexes);
}

} // namespace

QByteArray little_u32(quint32 value)
{
    return little(value);
}

QByteArray little_u64(quint64 value)
{
    return little(value);
}

QByteArray little_double(double value)
{
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return little(bits);
}

QByteArray little_float(float value)
{
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return little(bits);
}

QByteArray variable(quint64 value)
{
    int following = 0;
    // Each byte more holds seven bits more, until the length bits fill the first byte.
    while (following < 8 && value >> (7 * (following + 1)) != 0)
        ++following;
    QByteArray bytes;
    for (int i = following; i > 0; --i)
        bytes.append(char(value >> (8 * (i - 1))));
    const quint64 top = following < 8 ? value >> (8 * following) : 0;
    return bytes.prepend(char((0xff00U >> following) | top));
}

QByteArray prefixed(const QByteArray &bytes)
{
    return variable(quint64(bytes.size())) + bytes;
}

QByteArray many(quint64 size, const std::vector<quint64> &numbers)
{
    QByteArray bytes = variable(size * numbers.size());
    for (const quint64 number : numbers)
        bytes += variable(number);
    return bytes;
}

QByteArray date(double epoch_seconds)
{
    return little_double(epoch_seconds - reference_date);
}

record_writer::record_writer(quint64 id, quint64 parent, qint64 updated_microseconds)
    : id_(id)
    , parent_(parent)
    , updated_(updated_microseconds)
{
}

record_writer &record_writer::add(quint32 attribute, const QByteArray &encoded_value)
{
    values_[attribute] = encoded_value;
    return *this;
}

record_writer &record_writer::raw(const QByteArray &bytes)
{
    raw_ += bytes;
    return *this;
}

QByteArray record_writer::bytes(bool swap_ids) const
{
    const quint64 id = swap_ids && id_ != 1 ? qbswap(id_) : id_;
    QByteArray record = variable(id) + '\0' + variable(7) +
                        variable(swap_ids ? qbswap(parent_) : parent_) +
                        variable(quint64(updated_));
    quint32 before = 0;
    for (const auto &[attribute, value] : values_) {
        record += variable(attribute - before) + value;
        before = attribute;
    }
    return record + raw_;
}

store_writer::store_writer()
{
    attribute("_kMDItemFileName", 11, 0x4c);
}

quint32 store_writer::attribute(const char *name, quint8 type, quint8 flags)
{
    const quint32 index = quint32(tables_[0].size()) + 1;
    attribute_at(index, name, type, flags);
    return index;
}

void store_writer::attribute_at(quint32 index, const char *name, quint8 type, quint8 flags)
{
    tables_[0].emplace_back(index, QByteArray() + char(type) + char(flags) + name + '\0');
}

quint32 store_writer::text(const QByteArray &utf8)
{
    tables_[1].emplace_back(tables_[1].size() + 1, utf8 + '\0');
    return tables_[1].back().first;
}

quint32 store_writer::list(const std::vector<qint32> &texts)
{
    tables_[2].emplace_back(tables_[2].size() + 1, list_entry(texts, {}));
    return tables_[2].back().first;
}

quint32 store_writer::localized(const std::vector<qint32> &texts)
{
    tables_[3].emplace_back(tables_[3].size() + 1, list_entry(texts, "\x20"));
    return tables_[3].back().first;
}

store_writer &store_writer::add(const record_writer &record)
{
    if (!page_open_ || pages_.back().plain.size() > full_page_bytes)
        pages_.push_back({{}, packing_, 0});
    page_open_ = true;
    const QByteArray bytes = record.bytes(swap_ids_);
    pages_.back().plain += little_u32(quint32(bytes.size())) + bytes;
    return *this;
}

store_writer &store_writer::file(quint64 id, quint64 parent, const QByteArray &name, qint64 updated)
{
    return add(record_writer(id, parent, updated).add(file_name, prefixed(name + '\0')));
}

store_writer &store_writer::end_page()
{
    page_open_ = false;
    return *this;
}

store_writer &store_writer::page_packing(packing how)
{
    packing_ = how;
    return end_page();
}

store_writer &store_writer::swap_ids(bool swap)
{
    swap_ids_ = swap;
    return *this;
}

store_writer &store_writer::map_signature(const char *signature)
{
    map_signature_ = signature;
    return *this;
}

store_writer &store_writer::tables_beside(bool beside)
{
    tables_beside_ = beside;
    return *this;
}

store_writer &store_writer::page_bytes(int bytes)
{
    page_bytes_ = bytes;
    return *this;
}

QByteArray store_writer::store()
{
    const int map_entries_a_page = (page_bytes_ - 20) / 16;
    const int map_pages = int(pages_.size()) / map_entries_a_page + 1;
    QByteArray store(map_offset + map_pages * page_bytes_, '\0');
    overwrite(&store, 0, "8tsd" + little_u32(0x509));
    overwrite(&store, 36, little_u32(map_offset));
    overwrite(&store, 40, little_u32(quint32(map_pages * page_bytes_)));
    overwrite(&store, 44, little_u32(quint32(page_bytes_)));
    data_pages_.clear();
    data_page_sizes_.clear();
    for (const data_page &own : pages_) {
        const bool packed = own.how != packing::plain;
        const QByteArray bytes =
            page(0x09 | packing_bits(own.how), packed ? quint32(own.plain.size()) + 20 : 0,
                 pack(own.plain, own.how), page_bytes_);
        data_pages_.push_back(store.size());
        data_page_sizes_.push_back(bytes.size());
        store += bytes;
    }
    append_tables(&store);
    overwrite(&store, map_offset, map());
    return store;
}

QByteArray store_writer::map() const
{
    const int entries_a_page = (page_bytes_ - 20) / 16;
    QByteArray map;
    for (size_t first = 0; first == 0 || first < data_pages_.size();
         first += size_t(entries_a_page)) {
        const size_t end = std::min(data_pages_.size(), first + size_t(entries_a_page));
        QByteArray own = map_signature_ + little_u32(quint32(page_bytes_)) +
                         little_u32(quint32(end - first)) + little_u64(0);
        for (size_t i = first; i < end; ++i)
            own += little_u64(i) + little_u32(quint32(data_pages_[i] / block_bytes)) +
                   little_u32(quint32(data_page_sizes_[i]));
        map += padded(own, page_bytes_);
    }
    return map;
}

void store_writer::append_tables(QByteArray *store)
{
    table_pages_.assign(4, 0);
    for (size_t k = 0; k < 4 && !tables_beside_; ++k) {
        table_pages_[k] = store->size();
        overwrite(store, table_fields[k], little_u32(quint32(store->size() / block_bytes)));
        for (size_t i = 0; i < tables_[k].size() || i == 0; i += entries_a_table_page) {
            QByteArray entries;
            for (size_t j = i; j < std::min(i + entries_a_table_page, tables_[k].size()); ++j)
                entries += little_u32(tables_[k][j].first) + tables_[k][j].second;
            const bool last = i + entries_a_table_page >= tables_[k].size();
            const QByteArray next =
                little_u32(last ? 0 : quint32((store->size() + page_bytes_) / block_bytes));
            *store += page(table_types[k], 0, next + little_u64(0) + entries, page_bytes_);
        }
    }
}

QHash<QString, QByteArray> store_writer::side_files() const
{
    QHash<QString, QByteArray> files;
    for (size_t k = 0; k < 4 && tables_beside_; ++k) {
        quint32 count = 1;
        for (const auto &entry : tables_[k])
            count = std::max(count, entry.first + 1);
        std::vector<quint32> offsets(count, 1); // unused ones are deleted ones
        offsets[0] = 0;
        QByteArray data(5, '\0');
        for (const auto &[index, entry] : tables_[k]) {
            offsets[index] = quint32(data.size());
            data += leb128(quint64(entry.size())) + entry;
        }
        QByteArray slots;
        for (const quint32 offset : offsets)
            slots += little_u32(offset);
        QByteArray header("\0PataD\0\0", 8);
        for (const quint32 field : {13U, 0U, 1U, quint32(data.size()), 0U, count})
            header += little_u32(field);
        const QString name = QStringLiteral("dbStr-%1.map.").arg(side_numbers[k]);
        files[name + QStringLiteral("header")] = header + QByteArray(24, '\0');
        files[name + QStringLiteral("offsets")] = padded(slots, block_bytes);
        files[name + QStringLiteral("data")] = padded(data, block_bytes);
    }
    return files;
}

QHash<QString, QByteArray> store_writer::folder(const char *name)
{
    QHash<QString, QByteArray> files = side_files();
    files[QString::fromLatin1(name)] = store();
    return files;
}

QByteArray pack(const QByteArray &plain, packing how)
{
    switch (how) {
    case packing::zlib: {
        uLongf size = compressBound(uLong(plain.size()));
        QByteArray packed(int(size), '\0');
        compress(reinterpret_cast<Bytef *>(packed.data()), &size,
                 reinterpret_cast<const Bytef *>(plain.constData()), uLong(plain.size()));
        return packed.left(int(size));
    }
    case packing::lz4_frames:
        return lz4_frames(plain);
    case packing::lz4_block:
        return lz4(plain, nullptr, 0);
    case packing::lzfse:
        return "bvx-" + little_u32(quint32(plain.size())) + plain + "bvx$";
    default:
        return plain;
    }
}

QByteArray page(quint32 type, quint32 plain_size, const QByteArray &content, int unit)
{
    const QByteArray body = padded(QByteArray(20, '\0') + content, unit);
    QByteArray bytes = "2pbd" + little_u32(quint32(body.size())) +
                       little_u32(quint32(content.size()) + 20) + little_u32(type) +
                       little_u32(plain_size);
    return bytes + body.mid(20);
}

void overwrite(QByteArray *bytes, int offset, const QByteArray &by)
{
    bytes->replace(offset, by.size(), by);
}

} // namespace samples
