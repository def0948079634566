// Runs over a hostile source: nothing of it changes, nothing is written but results and log, and
// nothing beside the source is looked into.
#include "tests/fixtures/child_process.h"
#include "tests/fixtures/evidence_snapshot.h"
#include "samples/hostile_source.h"
#include "tests/fixtures/host_driver.h"
#include "tests/fixtures/printing.h"
#include "tests/fixtures/result_rows.h"
#include "tests/fixtures/traced_run.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

const QStringList users = {QStringLiteral("alice"), QStringLiteral("mallory"),
                           QStringLiteral("stranger")};

bool is_special(const QString &path)
{
    const QFileInfo found(path);
    return found.exists() && !found.isFile() && !found.isDir();
}

class evidence_unaltered : public ::testing::Test
{
protected:
    evidence_unaltered() { fill_hostile_source(source); }

    // With room for what is seen of the source beside it, too.
    [[nodiscard]] QString neighbourhood() const { return source.outside(QStringLiteral(".")); }

    source_builder source;
    const QTemporaryDir results;
    const QTemporaryDir logs;
};

TEST_F(evidence_unaltered, nothing_of_a_hostile_source_changes)
{
    age_access_times(source.root());
    const evidence_snapshot before = snapshot_of(source.root());
    ASSERT_GT(before.size(), 80);
    host_driver host(source, users);
    const run_outcome outcome = host.run();
    EXPECT_TRUE(outcome.ended());
    EXPECT_GT(outcome.records, 30);
    EXPECT_GT(outcome.told("outside the source ------FAILED------"), 5);
    EXPECT_EQ(differences(before, snapshot_of(source.root())), QByteArray());
}

// Somebody else's files, as on most mounted images: the system then refuses to keep access times.
TEST_F(evidence_unaltered, other_peoples_files_are_read_all_the_same)
{
    host_driver host(source, users);
    const qint64 records = host.run(true).records;
    ASSERT_EQ(::chmod(QFile::encodeName(neighbourhood()), 0755), 0);
    run_unprivileged(source.result_folder(),
                     [&] { EXPECT_EQ(host_driver(source, users).run(true).records, records); });
}

TEST_F(evidence_unaltered, only_results_and_log_are_written_and_only_the_source_is_read)
{
    age_access_times(source.root());
    const evidence_snapshot before = snapshot_of(source.root());
    const QString log = logs.filePath(QStringLiteral("debug.log"));
    const traced_run run =
        trace(QStringLiteral(PLUGIN_HOST),
              {QStringLiteral("extract"), QStringLiteral("--debug-log"), log,
               QStringLiteral("--attributes"), QStringLiteral("kMDItemFSSize,kMDItemWhereFroms"),
               source.root(), results.filePath(QStringLiteral("out"))});
    ASSERT_EQ(run.status, 1) << "strace has to work here (package strace, the right to ptrace): "
                             << run.output.toStdString();
    // It did see what a run has to do.
    const QString database =
        results.filePath(QStringLiteral("out/Artifacts_Result/Cyberduck/Cyberduck.sqlite"));
    for (const QString &path : {database, log})
        EXPECT_TRUE(run.written.contains(path)) << path.toStdString();
    const QString list = source.root() + "Users/mallory" + QLatin1String(older_bookmarks);
    EXPECT_TRUE(run.read.contains(list + "0.duck"));
    EXPECT_TRUE(run.read.contains(list + "claims.duck"));

    // Below /proc nothing can be made: the program points Qt there to keep it from making folders.
    EXPECT_EQ(outside_of(run.written, {results.path(), log, QStringLiteral("/proc")}),
              QStringList());
    QStringList beside;
    const QString parent = QDir::cleanPath(neighbourhood());
    for (const QString &path : run.read) {
        if (path == parent || path.startsWith(parent + QLatin1Char('/')))
            beside.append(path);
    }
    EXPECT_EQ(outside_of(beside, {QDir::cleanPath(source.root())}), QStringList());
    for (const QString &path : run.read) // some devices act when they are opened
        EXPECT_FALSE(path.startsWith(source.root()) && is_special(path)) << path.toStdString();
    EXPECT_EQ(differences(before, snapshot_of(source.root())), QByteArray());
}

// The two checks above can fail: each of these programs does one thing that they must see.
TEST_F(evidence_unaltered, the_checks_see_what_they_are_for)
{
    const QString secret = source.outside(QStringLiteral("private/secret.duck"));
    const QString link = source.root() + "Users/stranger/secret.duck";
    const QString list = source.root() + "Users/alice" + QLatin1String(older_bookmarks) + "0.duck";
    const QString beside = source.outside(QStringLiteral("private"));
    const QString in_source = source.root() + QStringLiteral("ë new");
    const struct
    {
        const char *name;
        QStringList command;
        QString written;
        QString read;
        bool changes;
    } rows[] = {
        {"reads beside it through a link", {"cat", link}, {}, secret, false},
        {"reads a folder beside it", {"ls", beside}, {}, beside, false},
        {"makes a file", {"touch", in_source}, in_source, {}, true},
        {"writes into a list", {"sh", "-c", "echo >> \"$0\"", list}, list, {}, true},
        {"changes a mode", {"chmod", "600", list}, list, {}, true},
        {"sets a time", {"touch", "-a", "-d", "2001-01-01", list}, list, {}, true},
        {"renames", {"mv", list, list + "x"}, list, {}, true},
        {"removes", {"rm", list + "x"}, list + "x", {}, true},
    };
    QFile::remove(source.root() + "Users/mallory" + QLatin1String(older_history) + "vast.duck");
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        QFile::remove(in_source);
        const evidence_snapshot before = snapshot_of(source.root());
        const traced_run run = trace(row.command.constFirst(), row.command.mid(1));
        EXPECT_EQ(run.status, 0) << run.output.toStdString();
        if (!row.written.isNull()) {
            EXPECT_TRUE(outside_of(run.written, {results.path()}).contains(row.written))
                << run.written.join('\n').toStdString();
        }
        if (!row.read.isNull()) {
            EXPECT_TRUE(outside_of(run.read, {QDir::cleanPath(source.root())}).contains(row.read))
                << run.read.join('\n').toStdString();
        }
        EXPECT_EQ(!differences(before, snapshot_of(source.root())).isEmpty(), row.changes);
    }
}

} // namespace
