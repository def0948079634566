// Turns Ctrl-C into a call on a thread of its own.
#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace host {

// While it lives, SIGINT and SIGTERM do not end the program: they call back, once. A signal that
// comes before watch() is kept until then. One object at a time; not copyable.
//
// The extraction holds the main thread and a signal handler may call next to nothing, so the
// handler only writes to a pipe on which a watching thread sleeps.
class interrupt_watcher
{
public:
    interrupt_watcher();
    ~interrupt_watcher();
    interrupt_watcher(const interrupt_watcher &) = delete;
    interrupt_watcher &operator=(const interrupt_watcher &) = delete;

    // `on_interrupt` is called on the watching thread, before stop() has returned.
    void watch(std::function<void()> on_interrupt);
    // After it nothing is called any more. Needless when watch() was not called.
    void stop();

private:
    std::thread thread_;
    int pipe_[2] = {-1, -1}; // the handler and stop() write to [1], the thread reads from [0]
};

} // namespace host
