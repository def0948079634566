// Keeps what a reader throws on its side of the platform's interface, as when memory is lacking.
#pragma once

#include <exception>
#include <utility>

namespace platform {

// The result of `question`; `fallback` when an exception ends it. One file is lost then, not the
// run.
template <typename Answer, typename Question>
[[nodiscard]] Answer contained(Answer fallback, const Question &question)
{
    try {
        return question();
    } catch (const std::exception &) {
        return fallback;
    }
}

} // namespace platform
