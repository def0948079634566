// Reads the name tables of a store from where they are: pages of the store file, or files beside
// it.
#pragma once

#include "evidence/files/byte_source.h"
#include "formats/spotlight_store/tables/spotlight_tables.h"

#include <memory>

namespace formats {

// Block numbers of each table's first page; 0 = the table is empty.
struct spotlight_table_blocks
{
    quint32 attributes = 0;
    quint32 texts = 0;
    quint32 lists = 0;
    quint32 localized_lists = 0;
};

// Never null. A damaged page or side file costs what stands in it. So does what the budget does not
// cover.
[[nodiscard]] std::shared_ptr<const spotlight_tables>
load_page_tables(evidence::byte_source &file, const spotlight_table_blocks &blocks,
                 spotlight_budget *budget);
[[nodiscard]] std::shared_ptr<const spotlight_tables>
load_side_tables(const evidence::byte_folder &folder, spotlight_budget *budget);

} // namespace formats
