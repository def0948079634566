// The one place that knows whether a run shall end early.
#pragma once

#include "run/cancellation.h"

#include <atomic>
#include <functional>
#include <mutex>

namespace host {

// request() may be called from any thread.
class run_stop
{
public:
    void request()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        requested_ = true;
        if (hook_)
            hook_();
    }

    // What ends the part of the run that begins now. Called at once if the end was asked for
    // already. Null when that part is over.
    void set_hook(std::function<void()> hook)
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        hook_ = std::move(hook);
        if (requested_ && hook_)
            hook_();
    }

    [[nodiscard]] bool is_requested() const { return requested_; }
    // This object must outlive it.
    [[nodiscard]] run::cancellation cancellation() const { return run::cancellation(requested_); }

private:
    std::mutex mutex_;
    std::atomic<bool> requested_{false};
    std::function<void()> hook_;
};

} // namespace host
