// Reads many lists at the same time.
#pragma once

#include "inventory/reading/list_account.h"
#include "run/cancellation.h"

#include <functional>
#include <vector>

namespace inventory {

// Reads `lists` in `jobs` threads and hands over the accounts in the order of `lists`, on the
// calling thread. What was read but not taken yet is bounded, in number and in bytes. Returns false
// when cancelled; then the last accounts are missing.
[[nodiscard]] bool read_lists(const std::vector<found_list> &lists, int jobs,
                              const run::cancellation &cancelled,
                              const std::function<void(list_account account)> &take);

} // namespace inventory
