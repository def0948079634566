// One file of a store: its header, its map, its pages.
#pragma once

#include "evidence/files/byte_source.h"
#include "formats/spotlight_store/blocks/spotlight_page.h"
#include "formats/spotlight_store/tables/spotlight_table_loader.h"

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

namespace formats {

enum class spotlight_file_state {
    sound,
    not_a_store, // another signature, or a header that cannot be
    old_version  // of systems before 10.6: no paths can be built from it
};

// What a pass over the records met that could not be used.
struct spotlight_pass_result
{
    qint64 pages_damaged = 0;
    qint64 pages_packed_with_lzfse = 0;
    bool limit_met = false; // more than any real store holds: the rest was left out
    bool stopped = false;   // on request
};

class spotlight_store_file
{
public:
    // The budget pays for everything that is read, and must outlive the file.
    spotlight_store_file(std::unique_ptr<evidence::byte_source> bytes, spotlight_budget *budget);

    [[nodiscard]] spotlight_file_state state() const { return state_; }
    // Whether the name tables lie in files of their own.
    [[nodiscard]] bool has_side_tables() const { return table_blocks_.attributes == 0; }
    [[nodiscard]] std::shared_ptr<const spotlight_tables> load_tables() const;

    // Called with the block of a page, the offset of a record in the unpacked page, and the record
    // without its size. Returns whether to go on.
    using record_visitor =
        std::function<bool(quint32 block, quint32 offset, std::string_view record)>;
    // Visits every record of every page of the map, once.
    [[nodiscard]] spotlight_pass_result visit_records(const record_visitor &visit) const;
    // A page again, unpacked; empty when it cannot be read.
    [[nodiscard]] QByteArray page_content(quint32 block) const;

private:
    class pass;
    bool parse_header();

    std::unique_ptr<evidence::byte_source> bytes_;
    spotlight_budget *budget_;
    spotlight_file_state state_ = spotlight_file_state::not_a_store;
    qint64 map_offset_ = 0;
    qint64 map_end_ = 0;
    qint64 page_bytes_ = 0;
    spotlight_table_blocks table_blocks_;
};

// The record that starts with its size at `offset` of an unpacked page; nullopt when it does not
// lie wholly inside.
[[nodiscard]] std::optional<std::string_view> record_at(const QByteArray &page, quint32 offset);

} // namespace formats
