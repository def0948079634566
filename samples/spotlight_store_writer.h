// Writes index stores, correct ones and forged ones.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include <map>
#include <utility>
#include <vector>

namespace samples {

enum class packing { plain, zlib, lz4_frames, lz4_block, lzfse };

// Encoded values.
[[nodiscard]] QByteArray little_u32(quint32 value);
[[nodiscard]] QByteArray little_u64(quint64 value);
[[nodiscard]] QByteArray little_double(double value);
[[nodiscard]] QByteArray little_float(float value);
[[nodiscard]] QByteArray variable(quint64 value);           // the integer of records
[[nodiscard]] QByteArray prefixed(const QByteArray &bytes); // its length in front
[[nodiscard]] QByteArray many(quint64 size, const std::vector<quint64> &numbers);

constexpr double reference_date = 978307200.0; // 2001 in seconds since 1970
[[nodiscard]] QByteArray date(double epoch_seconds);

class record_writer
{
public:
    record_writer(quint64 id, quint64 parent, qint64 updated_microseconds = 1);
    record_writer &add(quint32 attribute, const QByteArray &encoded_value);
    record_writer &raw(const QByteArray &bytes);         // behind all attributes
    [[nodiscard]] QByteArray bytes(bool swap_ids) const; // without the size

private:
    quint64 id_;
    quint64 parent_;
    qint64 updated_;
    std::map<quint32, QByteArray> values_;
    QByteArray raw_;
};

class store_writer
{
public:
    store_writer();

    // Each returns the index of the new entry.
    quint32 attribute(const char *name, quint8 type, quint8 flags);
    quint32 text(const QByteArray &utf8);
    quint32 list(const std::vector<qint32> &texts);
    quint32 localized(const std::vector<qint32> &texts); // with one odd byte before the indexes
    // An entry of the attribute table under the given index.
    void attribute_at(quint32 index, const char *name, quint8 type, quint8 flags);

    store_writer &add(const record_writer &record);
    // A record with the file name attribute (index 1 of every store).
    store_writer &file(quint64 id, quint64 parent, const QByteArray &name, qint64 updated = 1);
    store_writer &root() { return file(2, 0, "Volume"); }
    // Ends the current page of records. A page also ends at about 60 KB.
    store_writer &end_page();
    store_writer &page_packing(packing how);
    store_writer &swap_ids(bool swap);
    store_writer &map_signature(const char *signature);
    store_writer &tables_beside(bool beside);
    store_writer &page_bytes(int bytes); // 0x4000 if not set, a multiple of 0x1000

    [[nodiscard]] QByteArray store();
    // The side files by name. Empty for a store with tables inside.
    [[nodiscard]] QHash<QString, QByteArray> side_files() const;
    // The whole folder with the store under `name`.
    [[nodiscard]] QHash<QString, QByteArray> folder(const char *name = "store.db");

    // Valid after store(): where pages start in it.
    [[nodiscard]] int data_page_offset(int number) const { return data_pages_.at(size_t(number)); }
    [[nodiscard]] int table_page_offset(int number) const
    {
        return table_pages_.at(size_t(number));
    }

    static constexpr quint32 file_name = 1; // index of _kMDItemFileName
    static constexpr int map_offset = 0x1000;

private:
    using table = std::vector<std::pair<quint32, QByteArray>>; // as stored in pages

    struct data_page
    {
        QByteArray plain;
        packing how;
        quint64 last_id;
    };
    [[nodiscard]] QByteArray map() const;
    void append_tables(QByteArray *store);

    table tables_[4]; // attributes, texts, lists, localized lists
    std::vector<data_page> pages_;
    std::vector<int> data_pages_;
    std::vector<int> data_page_sizes_;
    std::vector<int> table_pages_;
    QByteArray map_signature_ = "2mbd";
    packing packing_ = packing::plain;
    int page_bytes_ = 0x4000;
    bool swap_ids_ = false;
    bool tables_beside_ = false;
    bool page_open_ = false;
};

// Packed forms of a page's records.
[[nodiscard]] QByteArray pack(const QByteArray &plain, packing how);
// A page with its header. The sizes are those given and may be wrong.
[[nodiscard]] QByteArray page(quint32 type, quint32 plain_size, const QByteArray &content,
                              int unit = 0x4000);
// The bytes at `offset` replaced.
void overwrite(QByteArray *bytes, int offset, const QByteArray &by);

} // namespace samples
