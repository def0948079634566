// Cancelling at any moment: no crash, and the rows that are kept are the first rows of a full run.
#include "support/filled_source.h"
#include "support/host_driver.h"
#include "support/printing.h"
#include "support/result_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <random>
#include <thread>

namespace {

using std::chrono::steady_clock;

const QString alice = QStringLiteral("alice");
const QStringList users = {alice, QStringLiteral("zoe")};

class fault_cancel : public ::testing::Test
{
protected:
    fault_cancel()
    {
        for (const QString &user : users)
            fill_home(source, user, counts);
    }

    // In the order in which the tables are filled: once one ends early, the later ones are empty.
    [[nodiscard]] ::testing::AssertionResult is_start_of_full_run(const table_rows &rows) const
    {
        bool ended_early = false;
        for (size_t i = 0; i < rows.size(); ++i) {
            if (!begins_with(full[i], rows[i]))
                return ::testing::AssertionFailure() << "other rows in " << extracted_tables[i];
            if (ended_early && !rows[i].isEmpty())
                return ::testing::AssertionFailure() << "gap before " << extracted_tables[i];
            ended_early = rows[i].size() < full[i].size();
        }
        return ::testing::AssertionSuccess();
    }

    list_counts counts = {15, 15, 2, 5};
    source_builder source;
    table_rows full;
};

// Calls pub_cancel_extraction once in each round, the given time after the round has begun.
class canceller
{
public:
    explicit canceller(cyberduck *plugin)
        : thread_([this, plugin] {
            for (int round = 1; wait_for(round); ++round) {
                while (steady_clock::now() < moment_)
                    std::this_thread::yield();
                plugin->pub_cancel_extraction();
                done_ = round;
            }
        })
    {
    }
    ~canceller()
    {
        begun_ = -1;
        thread_.join();
    }
    canceller(const canceller &) = delete;
    canceller &operator=(const canceller &) = delete;

    void begin(std::chrono::nanoseconds delay)
    {
        moment_ = steady_clock::now() + delay;
        ++begun_;
    }
    void wait_until_called() const
    {
        while (done_ != begun_)
            std::this_thread::yield();
    }

private:
    bool wait_for(int round) const
    {
        while (begun_ != round && begun_ != -1)
            std::this_thread::yield();
        return begun_ == round;
    }

    std::atomic<int> begun_{0};
    std::atomic<int> done_{0};
    steady_clock::time_point moment_; // handed over by begun_
    std::thread thread_;
};

TEST_F(fault_cancel, from_another_thread_at_1000_random_moments)
{
    constexpr int moments = 1000;
    host_driver host(source, users);
    steady_clock::time_point begin;
    host.before_extraction = [&begin] { begin = steady_clock::now(); };
    std::chrono::nanoseconds longest{0};
    for (int i = 0; i < 5; ++i) { // the first is slower than the rest
        ASSERT_EQ(host.run(true).records, 2 * counts.rows());
        longest = steady_clock::now() - begin;
    }
    full = rows_in(source.database());

    std::mt19937_64 random(20261123); // NOLINT: the same moments each time, as far as time goes
    std::uniform_int_distribution<qint64> delay(0, longest.count());
    canceller other_thread(&host.plugin());
    host.before_extraction = [&] { other_thread.begin(std::chrono::nanoseconds(delay(random))); };
    int cut_short = 0;
    for (int i = 0; i < moments; ++i) {
        const run_outcome outcome = host.run(true);
        other_thread.wait_until_called();
        const table_rows rows = rows_in(source.database());
        ASSERT_TRUE(is_start_of_full_run(rows)) << "moment " << i;
        // Cancelled before it began, a run tells 0.
        ASSERT_EQ(outcome.records, row_count(rows)) << "moment " << i;
        cut_short += outcome.records < 2 * counts.rows() ? 1 : 0;
    }
    RecordProperty("cut_short", cut_short);
    EXPECT_GT(cut_short, moments / 4);
    host.before_extraction = nullptr;
    EXPECT_EQ(host.run(true).records, 2 * counts.rows()); // and it is as good as new
}

TEST_F(fault_cancel, from_inside_the_record_signal_at_every_record)
{
    host_driver host(source, users);
    ASSERT_EQ(host.run(true).records, 2 * counts.rows());
    full = rows_in(source.database());
    const int rows_of_lists = 2 * (counts.rows() - counts.preferences);
    for (int at = 0; at <= 2 * counts.rows(); ++at) {
        SCOPED_TRACE(at);
        host.on_records = [&host, at](qint64 records) {
            if (records == at)
                host.plugin().pub_cancel_extraction();
        };
        const run_outcome outcome = host.run(true);
        const table_rows rows = rows_in(source.database());
        EXPECT_TRUE(is_start_of_full_run(rows));
        EXPECT_EQ(row_count(rows), outcome.records);
        // The preferences of one user are read to their end.
        if (at <= rows_of_lists) {
            EXPECT_EQ(outcome.records, at);
        } else {
            EXPECT_GE(outcome.records, at);
        }
    }
}

} // namespace
