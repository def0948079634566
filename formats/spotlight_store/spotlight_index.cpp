#include "formats/spotlight_store/spotlight_index.h"

#include "formats/spotlight_store/tables/spotlight_name.h"

#include <QtEndian>

#include <algorithm>
#include <iterator>
#include <unordered_set>

namespace formats {

namespace {

constexpr size_t max_records = size_t(1) << 23; // several times what a large volume holds
constexpr size_t max_names_bytes = size_t(256) * 1024 * 1024;
constexpr size_t max_name_bytes = 1024;     // 255 UTF-16 units are 765 bytes
constexpr size_t recent_name_count = 65536; // a power of two
constexpr quint32 second_file_bit = 0x80000000;

constexpr quint64 store_record_id = 1;
// Volumes of one group mark the ids of the system volume with this bit.
constexpr quint64 system_volume_mark = 0x0800000000000000;
constexpr int file_id_bits = 48; // real ids count up from 16

constexpr int max_path_names = 1024;
constexpr size_t max_stale_folders = 64; // followed at one depth
constexpr int max_namesakes = 1024;      // compared in one folder

quint64 swapped(quint64 id)
{
    return id == store_record_id ? id : qbswap(id);
}

bool looks_like_hash(quint64 id)
{
    return (id & ~system_volume_mark) >> file_id_bits != 0;
}

// Of the records offered those whose names match best, all of them equally well.
class best_matches
{
public:
    explicit best_matches(const spotlight_name &wanted)
        : wanted_(wanted)
    {
    }

    void offer(size_t record, std::string_view stored)
    {
        const name_match match = stored.empty() ? name_match::none : wanted_.compare(stored);
        if (match == name_match::none || match < best_)
            return;
        if (match > best_)
            records_.clear();
        best_ = match;
        if (match != name_match::without_case || has_one_spelling(stored))
            records_.push_back(record);
    }

    [[nodiscard]] const std::vector<size_t> &records() const { return records_; }

private:
    // Two stored names that differ in case only: neither is surely the one that the path means.
    bool has_one_spelling(std::string_view stored)
    {
        const QString spelling = composed_name(stored);
        if (spelling_.isNull())
            spelling_ = spelling;
        ambiguous_ = ambiguous_ || spelling != spelling_;
        if (ambiguous_)
            records_.clear();
        return !ambiguous_;
    }

    const spotlight_name &wanted_;
    std::vector<size_t> records_;
    name_match best_ = name_match::none;
    QString spelling_;
    bool ambiguous_ = false;
};

} // namespace

bool spotlight_index::add(const spotlight_record_head &head, std::string_view name,
                          const spotlight_record_place &place)
{
    entry *known = known_record(head.id);
    if (known != nullptr && known->updated > head.updated_microseconds)
        return true;
    if (known == nullptr) {
        if (entries_.size() >= max_records)
            return false;
        // Grown in small steps: doubling would double the memory of a large volume.
        if (entries_.size() == entries_.capacity())
            entries_.reserve(entries_.size() + entries_.size() / 4 + 4096);
        entries_.push_back({});
        known = &entries_.back();
    }
    known->id = head.id;
    known->parent = head.parent_id;
    known->updated = head.updated_microseconds;
    known->name_hash = spotlight_name::hash_of(name);
    if (name != std::string_view(&names_[known->name]))
        known->name = keep_name(name, known->name_hash);
    known->block = place.block;
    known->offset_and_file = place.offset | (place.file == 0 ? 0 : second_file_bit);
    return true;
}

// The record of a file before this one. Both files of a store list the same ids in the same order.
spotlight_index::entry *spotlight_index::known_record(quint64 id)
{
    if (hint_ >= ended_ || entries_[hint_].id != id)
        hint_ = first_with_id(id, ended_);
    if (hint_ >= ended_ || entries_[hint_].id != id)
        return nullptr;
    return &entries_[hint_++];
}

quint32 spotlight_index::keep_name(std::string_view name, quint32 hash)
{
    // Longer than any file system allows: such a record can still be found by its id's children.
    if (name.empty() || name.size() > max_name_bytes ||
        name.size() + 1 > max_names_bytes - names_.size())
        return 0;
    recent_names_.resize(recent_name_count);
    quint32 &recent = recent_names_[hash % recent_name_count];
    if (recent != 0 && name == std::string_view(&names_[recent]))
        return recent;
    recent = static_cast<quint32>(names_.size());
    if (names_.size() + name.size() + 1 > names_.capacity())
        names_.reserve(names_.size() + names_.size() / 4 + 65536);
    names_.insert(names_.end(), name.begin(), name.end());
    names_.push_back('\0');
    return recent;
}

void spotlight_index::end_file()
{
    sort_entries();
    ended_ = entries_.size();
    hint_ = 0;
}

void spotlight_index::sort_entries()
{
    const auto before = [](const entry &a, const entry &b) {
        if (a.id != b.id)
            return a.id < b.id;
        // The last of equal ids is kept: the newest one, else the one read last.
        if (a.updated != b.updated)
            return a.updated < b.updated;
        return a.offset_and_file != b.offset_and_file ? a.offset_and_file < b.offset_and_file
                                                      : a.block < b.block;
    };
    if (!std::is_sorted(entries_.begin(), entries_.end(), before))
        std::sort(entries_.begin(), entries_.end(), before);
    const auto kept = std::unique(entries_.rbegin(), entries_.rend(),
                                  [](const entry &a, const entry &b) { return a.id == b.id; });
    entries_.erase(entries_.begin(), kept.base());
}

void spotlight_index::finish()
{
    recent_names_ = {};
    swap_ids_if_needed();
    const auto hashes = std::count_if(entries_.begin(), entries_.end(),
                                      [](const entry &a) { return looks_like_hash(a.id); });
    ids_are_hashes_ = static_cast<size_t>(hashes) > entries_.size() / 2;
    order_children();
}

void spotlight_index::swap_ids_if_needed()
{
    if (find_id(root_id) || !find_id(swapped_root_id))
        return;
    ids_swapped_ = true;
    for (entry &record : entries_) {
        record.id = swapped(record.id);
        record.parent = swapped(record.parent);
    }
    sort_entries();
}

void spotlight_index::order_children()
{
    // Sorting the keys themselves, for a moment, is several times faster than by way of entries_.
    struct child
    {
        quint64 parent;
        quint32 hash;
        quint32 entry;
    };
    std::vector<child> order;
    order.reserve(entries_.size());
    for (const entry &record : entries_)
        order.push_back({record.parent, record.name_hash, static_cast<quint32>(order.size())});
    std::sort(order.begin(), order.end(), [](const child &a, const child &b) {
        return a.parent != b.parent ? a.parent < b.parent : a.hash < b.hash;
    });
    children_.clear();
    children_.reserve(order.size());
    for (const child &own : order)
        children_.push_back(own.entry);
}

size_t spotlight_index::memory_bytes() const
{
    return entries_.capacity() * sizeof(entry) + children_.capacity() * sizeof(quint32) +
           names_.capacity();
}

size_t spotlight_index::first_with_id(quint64 id, size_t end) const
{
    const auto last = entries_.begin() + static_cast<std::ptrdiff_t>(end);
    const auto found = std::lower_bound(
        entries_.begin(), last, id, [](const entry &a, quint64 wanted) { return a.id < wanted; });
    return static_cast<size_t>(found - entries_.begin());
}

std::optional<spotlight_index::record_number> spotlight_index::find_id(quint64 id) const
{
    const size_t found = first_with_id(id, entries_.size());
    if (found == entries_.size() || entries_[found].id != id)
        return std::nullopt;
    return found;
}

void spotlight_index::append_children(quint64 parent, const spotlight_name &name,
                                      std::vector<record_number> *found) const
{
    struct child_key
    {
        quint64 parent;
        quint32 hash;
    };
    const auto first = std::lower_bound(
        children_.begin(), children_.end(), child_key{parent, name.hash()},
        [this](quint32 child, const child_key &key) {
            const entry &a = entries_[child];
            return a.parent != key.parent ? a.parent < key.parent : a.name_hash < key.hash;
        });
    best_matches best(name);
    int compared = 0;
    for (auto child = first; child != children_.end() && compared < max_namesakes; ++child) {
        const entry &record = entries_[*child];
        if (record.parent != parent || record.name_hash != name.hash())
            break;
        best.offer(*child, this->name(*child));
        ++compared;
    }
    found->insert(found->end(), best.records().begin(), best.records().end());
}

std::vector<spotlight_index::record_number>
spotlight_index::find_path(const QStringList &names) const
{
    if (ids_are_hashes_ || names.size() > max_path_names)
        return {};
    std::vector<record_number> level;
    if (const auto root = find_id(root_id))
        level.push_back(*root);
    std::unordered_set<quint64> visited = {root_id}; // forged parents can form a loop
    std::vector<quint64> folders = {root_id};
    for (const QString &text : names) {
        const spotlight_name name(text);
        level.clear();
        for (const quint64 folder : folders)
            append_children(folder, name, &level);
        folders.clear();
        const auto met = [&](record_number record) { return visited.count(id(record)) != 0; };
        level.erase(std::remove_if(level.begin(), level.end(), met), level.end());
        std::sort(level.begin(), level.end(), [this](record_number a, record_number b) {
            return entries_[a].updated > entries_[b].updated;
        });
        level.resize(std::min(level.size(), max_stale_folders));
        for (const record_number record : level)
            folders.push_back(id(record));
        visited.insert(folders.begin(), folders.end());
    }
    return level;
}

std::string_view spotlight_index::name(record_number record) const
{
    return std::string_view(&names_[entries_[record].name]);
}

spotlight_record_place spotlight_index::place(record_number record) const
{
    const entry &own = entries_[record];
    return {(own.offset_and_file & second_file_bit) != 0 ? 1 : 0, own.block,
            own.offset_and_file & ~second_file_bit};
}

quint64 spotlight_index::stored_id(record_number record) const
{
    return ids_swapped_ ? swapped(entries_[record].id) : entries_[record].id;
}

} // namespace formats
