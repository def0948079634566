// Keeps on their side of the platform seam what the system's frameworks raise and what they leave
// to a pool.
#pragma once

#include "platform/foundation_values.h"

namespace platform {

// The result of `question`; `fallback` when an exception ends it. One file is lost then, not the
// run.
template <typename answer, typename step>
answer contained(answer fallback, const step &question) noexcept {
    @try {
        return question();
    } @catch (...) {
        return fallback;
    }
}

// The same in a pool of its own, which outlives the exception: that may lie in it. The answer must
// not.
template <typename answer, typename step>
answer contained_in_pool(answer fallback, const step &question) noexcept {
    const release_pool pool;
    return contained(std::move(fallback), question);
}

} // namespace platform
