// Reads many lists at the same time.
#pragma once

#include "inventory/reading/list_account.h"
#include "run/cancellation.h"

#include <atomic>
#include <functional>
#include <vector>

namespace inventory {

// How far the reading has come. May be looked at from any thread.
struct reading_progress
{
    std::atomic<qint64> read{0};          // lists
    std::atomic<qint64> promised_rows{0}; // of those that are read, as far as they tell
};

// Reads `lists` in `jobs` threads and hands over the accounts in the order of `lists`, on the
// calling thread. What was read but not taken yet is bounded, in number and in bytes. Returns false
// when cancelled; then the last accounts are missing.
[[nodiscard]] bool read_lists(const std::vector<found_list> &lists, int jobs,
                              const run::cancellation &cancelled, reading_progress *progress,
                              const std::function<void(list_account account)> &take);

} // namespace inventory
