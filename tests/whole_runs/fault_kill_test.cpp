// Killed at any moment, as by a crash of the host: the database is sound, the rows of earlier runs
// are there, the killed run has left all rows of a table or none, and the next run is complete.
#include "samples/filled_source.h"
#include "tests/fixtures/printing.h"
#include "tests/fixtures/result_rows.h"
#include "tests/fixtures/source_builder.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>

#include <gtest/gtest.h>

#include <random>

#include <signal.h>
#include <unistd.h>

namespace {

class fault_kill : public ::testing::Test
{
protected:
    void start(QProcess *process) const
    {
        process->setProcessChannelMode(QProcess::MergedChannels);
        process->start(QStringLiteral(PLUGIN_HOST),
                       {QStringLiteral("extract"), QStringLiteral("--append"),
                        QStringLiteral("--progress"), QStringLiteral("never"), source.root(),
                        source.result_folder()});
        ASSERT_TRUE(process->waitForStarted());
    }

    void run_to_the_end() const
    {
        QProcess process;
        start(&process);
        ASSERT_TRUE(process.waitForFinished(120'000));
        ASSERT_EQ(process.exitCode(), 0) << process.readAll().toStdString();
    }

    // Whether the run was killed before its end.
    [[nodiscard]] bool killed_after(qint64 delay_us) const
    {
        QProcess process;
        start(&process);
        ::usleep(static_cast<useconds_t>(delay_us));
        ::kill(static_cast<pid_t>(process.processId()), SIGKILL);
        EXPECT_TRUE(process.waitForFinished());
        return process.exitStatus() == QProcess::CrashExit;
    }

    source_builder source;
};

TEST_F(fault_kill, at_100_random_moments)
{
    constexpr int moments = 100;
    const list_counts counts = {800, 1100, 100, 3};
    fill_home(source, QStringLiteral("alice"), counts);
    run_to_the_end();
    const table_rows first = rows_in(source.database());
    ASSERT_EQ(row_count(first), counts.rows());
    const QString first_copy = source.outside(QStringLiteral("first.sqlite"));
    ASSERT_TRUE(QFile::copy(source.database(), first_copy));
    QElapsedTimer timer;
    timer.start();
    run_to_the_end();
    std::mt19937_64 random(20261123); // NOLINT: the same moments each time, as far as time goes
    std::uniform_int_distribution<qint64> delay_us(0, timer.nsecsElapsed() / 1000);

    int killed = 0;
    int drafts = 0; // left by the kills that met the extraction
    for (int i = 0; i < moments; ++i) {
        SCOPED_TRACE(i);
        // Every tenth starts anew, so that the others find what several killed runs have left.
        if (i % 10 == 0) {
            QFile::remove(source.database());
            ASSERT_TRUE(QFile::copy(first_copy, source.database()));
        }
        killed += killed_after(delay_us(random)) ? 1 : 0;
        drafts +=
            QDir(source.result_folder())
                    .entryList({QStringLiteral(".plugin_host_draft_*")}, QDir::Dirs | QDir::Hidden)
                    .isEmpty()
                ? 0
                : 1;
        const result_reader database(source.database());
        ASSERT_EQ(database.integrity(), QStringLiteral("ok"));
        for (size_t t = 0; t < first.size(); ++t) {
            const QStringList rows = database.rows(extracted_tables[t]);
            ASSERT_TRUE(begins_with(rows, first[t])) << extracted_tables[t];
            ASSERT_EQ(rows.size() % first[t].size(), 0) << extracted_tables[t];
        }
    }
    EXPECT_GT(killed, moments / 2);
    EXPECT_GT(drafts, moments / 10);
    const int before = row_count(rows_in(source.database()));
    run_to_the_end();
    EXPECT_EQ(row_count(rows_in(source.database())), before + counts.rows());
}

} // namespace
