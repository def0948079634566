#include "inventory/reading/reader_pool.h"

#include "inventory/reading/list_reader.h"

#include <QThreadPool>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <utility>

namespace inventory {

namespace {

// Far more lists than threads: a large one must not keep the others waiting.
constexpr size_t lists_ahead = 16384;
// A thread takes that many lists at once, and the caller gets as many: less waiting for each other.
constexpr size_t lists_at_once = 32;
constexpr qint64 bytes_ahead_per_job = 32 << 20;
constexpr std::chrono::milliseconds cancel_latency{50};

qint64 memory_of(const list_account &account)
{
    qint64 bytes = 0;
    for (const stored_value &value : account.values)
        bytes += qint64(sizeof value) + value.path.size() + qint64(value.text.size());
    return bytes;
}

class reading
{
public:
    reading(const std::vector<found_list> &lists, int jobs, run::cancellation cancelled,
            reading_progress *progress)
        : lists_(lists)
        , bytes_ahead_(jobs * bytes_ahead_per_job)
        , cancelled_(cancelled)
        , progress_(progress)
        , accounts_(lists_ahead)
    {
    }

    // What each thread does.
    void work()
    {
        list_reader reader;
        for (;;) {
            const auto [first, end] = next_to_read();
            for (size_t index = first; index < end; ++index) {
                if (!wait_for_room(index))
                    return;
                list_account account = reader.read(lists_[index]);
                if (account.list.status == list_status::read)
                    progress_->promised_rows += account.entries.value_or(0);
                ++progress_->read;
                put(index, std::move(account));
            }
            if (first == end)
                return;
        }
    }

    // The next ones in order, at least one; none when cancelled.
    std::vector<list_account> next_accounts()
    {
        std::vector<list_account> next;
        std::unique_lock<std::mutex> lock(mutex_);
        while (!slot(taken_)) {
            if (is_stopped())
                return next;
            caller_waits_ = true;
            changed_.wait_for(lock, cancel_latency);
        }
        caller_waits_ = false;
        while (next.size() < lists_at_once && slot(taken_)) {
            next.push_back(std::move(*slot(taken_)));
            slot(taken_).reset();
            bytes_waiting_ -= memory_of(next.back());
            ++taken_;
        }
        if (threads_waiting_ > 0)
            changed_.notify_all();
        return next;
    }

    void stop()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        stopped_ = true;
        changed_.notify_all();
    }

private:
    std::optional<list_account> &slot(size_t index) { return accounts_[index % lists_ahead]; }

    bool is_stopped() const { return stopped_ || cancelled_.is_requested(); }

    std::pair<size_t, size_t> next_to_read()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        const size_t first = started_;
        started_ = is_stopped() ? first : std::min(first + lists_at_once, lists_.size());
        return {first, started_};
    }

    // The list that is waited for may always be read. False when the reading ends.
    bool wait_for_room(size_t index)
    {
        std::unique_lock<std::mutex> lock(mutex_);
        ++threads_waiting_;
        while (!is_stopped() && index != taken_ &&
               (index >= taken_ + lists_ahead || bytes_waiting_ >= bytes_ahead_))
            changed_.wait_for(lock, cancel_latency);
        --threads_waiting_;
        return !is_stopped();
    }

    void put(size_t index, list_account account)
    {
        const qint64 bytes = memory_of(account);
        const std::lock_guard<std::mutex> lock(mutex_);
        bytes_waiting_ += bytes;
        slot(index) = std::move(account);
        if (index == taken_ && caller_waits_)
            changed_.notify_all();
    }

    const std::vector<found_list> &lists_;
    const qint64 bytes_ahead_;
    run::cancellation cancelled_;
    reading_progress *progress_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::optional<list_account>> accounts_; // a ring
    size_t started_ = 0;                                // lists that a thread has taken
    size_t taken_ = 0;                                  // lists whose account was handed over
    qint64 bytes_waiting_ = 0;
    int threads_waiting_ = 0;
    bool caller_waits_ = false;
    bool stopped_ = false;
};

} // namespace

bool read_lists(const std::vector<found_list> &lists, int jobs, const run::cancellation &cancelled,
                reading_progress *progress, const std::function<void(list_account account)> &take)
{
    reading shared(lists, jobs, cancelled, progress);
    QThreadPool pool;
    pool.setMaxThreadCount(jobs);
    for (int i = 0; i < jobs; ++i)
        pool.start([&shared] { shared.work(); });
    size_t taken = 0;
    while (taken < lists.size()) {
        std::vector<list_account> accounts = shared.next_accounts();
        if (accounts.empty())
            break;
        taken += accounts.size();
        for (list_account &account : accounts)
            take(std::move(account));
    }
    shared.stop();
    pool.waitForDone();
    return taken == lists.size();
}

} // namespace inventory
