// Pages of a store file: where they lie, how they are packed.
#pragma once

#include "evidence/files/byte_source.h"
#include "formats/spotlight_store/blocks/spotlight_budget.h"

#include <QByteArray>

namespace formats {

// Block numbers count this many bytes, whatever the size of the pages.
constexpr qint64 spotlight_block_bytes = 0x1000;
constexpr int max_plain_page_bytes = 64 * 1024 * 1024; // guards against bombs

enum class spotlight_page_state {
    read,             // as far as the bytes go
    missing,          // starts outside the file, or is no page of the kind asked for
    too_costly,       // the budget does not cover unpacking it
    packed_with_lzfse // not read here
};

struct spotlight_page
{
    spotlight_page_state state = spotlight_page_state::missing;
    qint64 stored_bytes = 0; // bytes of the file that belong to it, 0 when missing
    quint32 next_block = 0;  // of the same table, 0 = last; tables only
    QByteArray content;      // entries or records, unpacked; empty when damaged
};

// `low_type`: low byte of the page types to accept.
[[nodiscard]] spotlight_page read_table_page(evidence::byte_source &file, quint32 block,
                                             quint32 low_type);
[[nodiscard]] spotlight_page read_record_page(evidence::byte_source &file, quint32 block,
                                              spotlight_budget *budget);

} // namespace formats
