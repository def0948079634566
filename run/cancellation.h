// Whether the host has asked for the end of a run. Loops over input ask before each step.
#pragma once

#include <atomic>

namespace run {

// A view of the flags that the host sets, from another thread too. They must outlive it.
class cancellation
{
public:
    cancellation() = default; // never requested
    explicit cancellation(const std::atomic<bool> &flag)
        : first_(&flag)
    {
    }
    // Requested when either flag is set.
    cancellation(const std::atomic<bool> &first, const std::atomic<bool> &second)
        : first_(&first)
        , second_(&second)
    {
    }

    [[nodiscard]] bool is_requested() const { return is_set(first_) || is_set(second_); }

private:
    static bool is_set(const std::atomic<bool> *flag)
    {
        return flag != nullptr && flag->load(std::memory_order_relaxed);
    }

    const std::atomic<bool> *first_ = nullptr;
    const std::atomic<bool> *second_ = nullptr;
};

} // namespace run
