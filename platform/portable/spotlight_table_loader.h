// Reads the name tables of a store from where they are: pages of the store file, or files beside
// it.
#pragma once

#include "byte_source.h"
#include "spotlight_tables.h"

#include <memory>

namespace platform {

// Block numbers of each table's first page; 0 = the table is empty.
struct spotlight_table_blocks
{
    quint32 attributes = 0;
    quint32 texts = 0;
    quint32 lists = 0;
    quint32 localized_lists = 0;
};

// Never null. A damaged page or side file costs what stands in it.
[[nodiscard]] std::shared_ptr<const spotlight_tables>
load_page_tables(byte_source &file, const spotlight_table_blocks &blocks);
[[nodiscard]] std::shared_ptr<const spotlight_tables> load_side_tables(const byte_folder &folder);

} // namespace platform
