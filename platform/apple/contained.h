// Exceptions of the system's frameworks, and objects that they leave to a pool, end here.
#pragma once

#include "platform/foundation_values.h"

namespace platform {

// The result of `question`; `fallback` when an exception ends it. One file is lost then, not the
// run.
template <typename answer, typename step>
answer contained(answer fallback, const step &question) noexcept
{
    @try {
        return question();
    } @catch (...) {
        return fallback;
    }
}

// The same in a pool of its own. The exception may lie in that pool, so the pool ends after it. The
// answer must not lie in it.
template <typename answer, typename step>
answer contained_in_pool(answer fallback, const step &question) noexcept
{
    const release_pool pool;
    return contained(std::move(fallback), question);
}

} // namespace platform
