// Turns Ctrl-C into a call on a thread of its own.
#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace host {

// While this object lives, SIGINT, SIGTERM and SIGHUP do not end the program: they call back, once.
// A second SIGINT ends it at once.
// A signal that comes before watch() is kept until then. Only one object at a time; not copyable.
//
// The extraction blocks the main thread, and a signal handler may call very little. So the handler
// only writes to a pipe, and a watching thread reads from it.
class interrupt_watcher
{
public:
    interrupt_watcher();
    ~interrupt_watcher();
    interrupt_watcher(const interrupt_watcher &) = delete;
    interrupt_watcher &operator=(const interrupt_watcher &) = delete;

    // `on_interrupt` is called on the watching thread, before stop() has returned.
    void watch(std::function<void()> on_interrupt);
    // After it nothing is called any more. Not needed without watch().
    void stop();

private:
    std::thread thread_;
    int pipe_[2] = {-1, -1}; // the handler and stop() write to [1], the thread reads from [0]
};

} // namespace host
