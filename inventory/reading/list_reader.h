// Reads one list for the inventory.
#pragma once

#include "formats/property_list/property_list_parser.h"
#include "inventory/reading/list_account.h"
#include "run/cancellation.h"

namespace inventory {

// One for each thread: it keeps its buffers. Nothing throws.
class list_reader
{
public:
    // Opens, hashes and takes apart what `found` names. A list that is not there for the tables is
    // read too: its status stays `skipped`.
    [[nodiscard]] list_account read(const found_list &found);

private:
    void read_content(const evidence::evidence_file &file, list_account *account);
    void take_apart(list_account *account);

    formats::property_list_parser parser_;
    QByteArray bytes_; // of the list, until the parser takes them
};

} // namespace inventory
