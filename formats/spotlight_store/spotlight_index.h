// Compact index over the records of one store: which file each record is of, and where the record
// lies. Sorted arrays and one pool of names, about 50 bytes a record and the name.
//
// Filled in one pass over each file of the store, then asked. Records of the second file replace
// those of the first that are not newer.
#pragma once

#include "formats/spotlight_store/spotlight_record.h"

#include <QStringList>

#include <optional>
#include <string_view>
#include <vector>

namespace formats {

// Where a record lies: a page of one of the store's files, and the byte in the unpacked page at
// which the record's size stands.
struct spotlight_record_place
{
    int file = 0; // 0 or 1
    quint32 block = 0;
    quint32 offset = 0;
};

class spotlight_index
{
public:
    // What names a record among those of its index, until the index is changed.
    using record_number = size_t;

    // `name` may be empty for a record without one. False when the index is full: the record is
    // not part of it then.
    bool add(const spotlight_record_head &head, std::string_view name,
             const spotlight_record_place &place);
    // To be called after the records of each file.
    void end_file();
    // To be called after the last file and before the first question.
    void finish();

    [[nodiscard]] size_t size() const { return entries_.size(); }
    // The most that a record of that name takes.
    [[nodiscard]] static qint64 memory_of(std::string_view name)
    {
        return qint64{sizeof(entry)} + qint64{sizeof(quint32)} + static_cast<qint64>(name.size());
    }
    // Memory that the index takes, allocated or used.
    [[nodiscard]] size_t memory_bytes() const;
    // Whether most ids are hashes and no file ids. Help and mail indexes are so; such an index
    // never answers for a file.
    [[nodiscard]] bool ids_are_hashes() const { return ids_are_hashes_; }

    // Records whose chain of parents and names from the volume's root is `names`; usually one or
    // none, several where stale records are left. The one updated last stands first. No names: the
    // root itself.
    [[nodiscard]] std::vector<record_number> find_path(const QStringList &names) const;
    [[nodiscard]] std::optional<record_number> find_id(quint64 id) const;

    [[nodiscard]] quint64 id(record_number record) const { return entries_[record].id; }
    [[nodiscard]] quint64 parent_id(record_number record) const { return entries_[record].parent; }
    [[nodiscard]] std::string_view name(record_number record) const;
    [[nodiscard]] spotlight_record_place place(record_number record) const;
    // The id as the record holds it, before its bytes were put in order.
    [[nodiscard]] quint64 stored_id(record_number record) const;

    static constexpr quint64 root_id = 2; // of HFS+ and APFS volumes
    static constexpr quint64 swapped_root_id = 0x0200000000000000;
    // `id`: as a record holds it, in either byte order.
    [[nodiscard]] static bool is_root(quint64 id) { return id == root_id || id == swapped_root_id; }

private:
    struct entry
    {
        quint64 id;
        quint64 parent;
        qint64 updated;
        quint32 name_hash;
        quint32 name; // in names_
        quint32 block;
        quint32 offset_and_file; // the file in the top bit
    };

    void sort_entries();
    void swap_ids_if_needed();
    void order_children();
    [[nodiscard]] size_t first_with_id(quint64 id, size_t end) const;
    [[nodiscard]] entry *known_record(quint64 id);
    [[nodiscard]] quint32 keep_name(std::string_view name, quint32 hash);
    void append_children(quint64 parent, const class spotlight_name &name,
                         std::vector<record_number> *found) const;

    std::vector<entry> entries_;    // by id once a file is ended
    std::vector<quint32> children_; // entries by parent, then by hash of the name
    std::vector<char> names_ = {'\0'};
    std::vector<quint32> recent_names_; // by hash, to keep a frequent name once
    size_t ended_ = 0;                  // entries of files before this one
    size_t hint_ = 0;                   // where the next id of this file is expected among them
    bool ids_swapped_ = false;
    bool ids_are_hashes_ = false;
};

} // namespace formats
