// Takes the inventory of sources.
#pragma once

#include "inventory/places/list_finder.h"
#include "inventory/reading/reader_pool.h"
#include "inventory/writing/inventory_database.h"
#include "run/cancellation.h"

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace inventory {

// The system's version and the volume's name, as the source tells them.
[[nodiscard]] source_facts facts_of_source(const QString &root);

struct inventory_request
{
    source_facts source;
    const found_on_source *found = nullptr;
    bool is_volume = true; // so that local paths lead somewhere
};

// Reads and hashes the lists of several sources, one source after the other, and writes what they
// hold into a database. All of it in the background: what comes next can begin as soon as the lists
// were read, while they are still being written. The result database plays no part in it.
class source_inventory
{
public:
    // Everything given here must outlive this object. `jobs`: threads that read.
    source_inventory(std::vector<inventory_request> requests, int jobs,
                     const run::cancellation &cancelled, inventory_database *database);
    ~source_inventory();
    source_inventory(const source_inventory &) = delete;
    source_inventory &operator=(const source_inventory &) = delete;

    // Waits a little. True once all lists of the source were read, or reading has ended early.
    [[nodiscard]] bool wait_until_read(size_t source);
    [[nodiscard]] const reading_progress &progress(size_t source) const
    {
        return *progress_[source];
    }
    // Waits until everything is written. False when it was cancelled or could not be written.
    [[nodiscard]] bool finish();

private:
    void take_all();
    bool take(const inventory_request &request, reading_progress *progress);

    std::vector<inventory_request> requests_;
    int jobs_;
    run::cancellation cancelled_;
    inventory_database *database_;
    std::vector<std::unique_ptr<reading_progress>> progress_;
    std::atomic<bool> has_ended_{false};
    bool is_whole_ = true;
    std::thread thread_;
};

} // namespace inventory
