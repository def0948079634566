#include "inventory/reading/reader_pool.h"

#include "inventory/reading/list_reader.h"

#include <QThreadPool>

#include <array>
#include <condition_variable>
#include <mutex>
#include <optional>

namespace inventory {

namespace {

// Far more lists than threads: a large one must not keep the others waiting.
constexpr size_t lists_ahead = 256;
constexpr qint64 bytes_ahead_per_job = 32 << 20;

qint64 memory_of(const list_account &account)
{
    qint64 bytes = 0;
    for (const stored_value &value : account.values)
        bytes += qint64(sizeof value) + 2 * (value.path.size() + qint64(value.text.size()));
    return bytes;
}

class reading
{
public:
    reading(const std::vector<found_list> &lists, int jobs, run::cancellation cancelled)
        : lists_(lists)
        , bytes_ahead_(jobs * bytes_ahead_per_job)
        , cancelled_(cancelled)
    {
    }

    // What each thread does.
    void work()
    {
        list_reader reader;
        while (const std::optional<size_t> index = next_to_read()) {
            list_account account = reader.read(lists_[*index]);
            put(*index, std::move(account));
        }
    }

    // Nothing when cancelled.
    std::optional<list_account> next_account()
    {
        std::unique_lock<std::mutex> lock(mutex_);
        std::optional<list_account> &slot = slots_[taken_ % lists_ahead];
        while (!slot) {
            if (is_stopped())
                return std::nullopt;
            changed_.wait_for(lock, cancel_latency);
        }
        std::optional<list_account> account = std::exchange(slot, std::nullopt);
        bytes_waiting_ -= memory_of(*account);
        ++taken_;
        changed_.notify_all();
        return account;
    }

    void stop()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        stopped_ = true;
        changed_.notify_all();
    }

private:
    static constexpr std::chrono::milliseconds cancel_latency{50};

    bool is_stopped() const { return stopped_ || cancelled_.is_requested(); }

    // The list that is waited for may always be read.
    bool may_read() const
    {
        return started_ == taken_ ||
               (started_ < taken_ + lists_ahead && bytes_waiting_ < bytes_ahead_);
    }

    std::optional<size_t> next_to_read()
    {
        std::unique_lock<std::mutex> lock(mutex_);
        for (;;) {
            if (is_stopped() || started_ == lists_.size())
                return std::nullopt;
            if (may_read())
                return started_++;
            changed_.wait_for(lock, cancel_latency);
        }
    }

    void put(size_t index, list_account account)
    {
        const qint64 bytes = memory_of(account);
        const std::lock_guard<std::mutex> lock(mutex_);
        bytes_waiting_ += bytes;
        slots_[index % lists_ahead] = std::move(account);
        if (index == taken_)
            changed_.notify_all();
    }

    const std::vector<found_list> &lists_;
    const qint64 bytes_ahead_;
    run::cancellation cancelled_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::array<std::optional<list_account>, lists_ahead> slots_;
    size_t started_ = 0; // lists that a thread has begun with
    size_t taken_ = 0;   // lists whose account was handed over
    qint64 bytes_waiting_ = 0;
    bool stopped_ = false;
};

} // namespace

bool read_lists(const std::vector<found_list> &lists, int jobs, const run::cancellation &cancelled,
                const std::function<void(list_account account)> &take)
{
    reading shared(lists, jobs, cancelled);
    QThreadPool pool;
    pool.setMaxThreadCount(jobs);
    for (int i = 0; i < jobs; ++i)
        pool.start([&shared] { shared.work(); });
    bool is_whole = true;
    for (size_t i = 0; i < lists.size() && is_whole; ++i) {
        std::optional<list_account> account = shared.next_account();
        is_whole = account.has_value();
        if (is_whole)
            take(std::move(*account));
    }
    shared.stop();
    pool.waitForDone();
    return is_whole;
}

} // namespace inventory
