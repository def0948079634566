#include "host/driving/interrupt.h"

#include <QtGlobal>

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace host {

namespace {

constexpr int handled_signals[] = {SIGINT, SIGTERM, SIGHUP};
constexpr char interrupted = 'i';
constexpr char stopped = 's';

std::atomic<int> pipe_for_handler{-1};
std::atomic<bool> was_interrupted{false};
static_assert(std::atomic<int>::is_always_lock_free, "read in a signal handler");

bool write_byte(int descriptor, char byte)
{
    ssize_t count = 0;
    do {
        count = write(descriptor, &byte, 1);
    } while (count < 0 && errno == EINTR);
    return count == 1;
}

extern "C" void handle_interrupt(int signal_number)
{
    // Who asks again wants no orderly end. What is left of the draft goes with the next run.
    constexpr int ended_by_interrupt = 130;
    if (signal_number == SIGINT && was_interrupted.exchange(true))
        ::_exit(ended_by_interrupt);
    const int error_before = errno;
    // A full pipe refuses the byte. Then it already holds an earlier one.
    write_byte(pipe_for_handler.load(), interrupted);
    errno = error_before;
}

void set_handlers(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART; // the database's system calls go on
    for (const int signal_number : handled_signals)
        sigaction(signal_number, &action, nullptr);
}

} // namespace

interrupt_watcher::interrupt_watcher()
{
    if (pipe(pipe_) != 0) {
        qWarning("no pipe for Ctrl-C: it ends the program at once");
        return;
    }
    for (const int descriptor : pipe_)
        fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    fcntl(pipe_[1], F_SETFL, O_NONBLOCK);
    pipe_for_handler = pipe_[1];
    set_handlers(handle_interrupt);
}

interrupt_watcher::~interrupt_watcher()
{
    if (pipe_[0] < 0)
        return;
    stop();
    set_handlers(SIG_DFL);
    pipe_for_handler = -1;
    close(pipe_[0]);
    close(pipe_[1]);
}

void interrupt_watcher::watch(std::function<void()> on_interrupt)
{
    if (pipe_[0] < 0)
        return;
    thread_ = std::thread([descriptor = pipe_[0], call = std::move(on_interrupt)] {
        bool called = false;
        char byte = 0;
        for (;;) {
            const ssize_t count = read(descriptor, &byte, 1);
            if (count < 0 && errno == EINTR)
                continue;
            if (count != 1 || byte == stopped)
                return;
            if (!called)
                call();
            called = true;
        }
    });
}

void interrupt_watcher::stop()
{
    if (!thread_.joinable())
        return;
    while (!write_byte(pipe_[1], stopped)) // full of signals: the thread empties it
        std::this_thread::yield();
    thread_.join();
}

} // namespace host
