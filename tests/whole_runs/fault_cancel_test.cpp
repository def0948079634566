// Cancelling at any moment: no crash, and the rows that are kept are the first rows of a full run.
#include "samples/filled_source.h"
#include "tests/fixtures/host_driver.h"
#include "tests/fixtures/printing.h"
#include "tests/fixtures/result_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
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
    std::thread other_thread;
    host.before_extraction = [&] {
        const auto moment = steady_clock::now() + std::chrono::nanoseconds(delay(random));
        other_thread = std::thread([&host, moment] {
            while (steady_clock::now() < moment)
                std::this_thread::yield();
            host.plugin().pub_cancel_extraction();
        });
    };
    int cut_short = 0;
    for (int i = 0; i < moments; ++i) {
        const run_outcome outcome = host.run(true);
        other_thread.join();
        const table_rows rows = rows_in(source.database());
        ASSERT_TRUE(is_start_of_full_run(rows)) << "moment " << i;
        // Cancelled before it began, a run tells 0.
        ASSERT_EQ(outcome.records, row_count(rows)) << "moment " << i;
        const bool has_all = rows[2].size() == full[2].size();
        ASSERT_EQ(outcome.told("[xcode_extract_transfers] end"), has_all) << "moment " << i;
        cut_short += outcome.records < 2 * counts.rows() ? 1 : 0;
    }
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
        // The preferences of one user are read to their end, the other's are not begun.
        const int of_users = qMax(0, at - rows_of_lists + counts.preferences - 1);
        EXPECT_EQ(outcome.records, at <= rows_of_lists
                                       ? at
                                       : rows_of_lists + of_users - of_users % counts.preferences);
        const bool is_cut_short = outcome.records < 2 * counts.rows();
        EXPECT_EQ(outcome.told("[extract_plugin_artifacts] ends"), is_cut_short ? 0 : 1);
    }
}

} // namespace
