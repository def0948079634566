// Takes the inventory of one source.
#pragma once

#include "inventory/places/list_finder.h"
#include "inventory/writing/inventory_database.h"
#include "run/cancellation.h"

#include <QStringList>

#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace inventory {

struct inventory_request
{
    source_facts source; // what the caller knows; the rest is found out
    const found_on_source *found = nullptr;
    int jobs = 1; // threads
    run::cancellation cancelled;
    // Told now and then, on the calling thread.
    std::function<void(qint64 done, qint64 found)> progress;
};

// By user and kind.
struct list_counts
{
    qint64 found = 0;
    qint64 read = 0;
    qint64 skipped = 0;
    qint64 failed = 0;
};

struct inventory_result
{
    bool is_whole = false; // neither cancelled nor a failure of the database
    std::map<std::pair<QString, list_kind>, list_counts> counts;
    qint64 promised_rows = 0; // of the lists that are read, as far as they tell
};

// Reads and hashes the lists that were found, and writes what they hold into `database`. The result
// database plays no part in it.
[[nodiscard]] inventory_result take_inventory(const inventory_request &request,
                                              inventory_database *database);

// The system's version and the volume's name, as the source tells them.
[[nodiscard]] source_facts facts_of_source(const QString &root);

} // namespace inventory
