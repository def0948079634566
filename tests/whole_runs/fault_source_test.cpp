// A source that does not give what it should: what can be read becomes rows, each failure is one
// line of the log, and the run ends regularly.
#include "tests/fixtures/child_process.h"
#include "samples/filled_source.h"
#include "tests/fixtures/host_driver.h"
#include "tests/fixtures/printing.h"
#include "tests/fixtures/result_rows.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include <sys/stat.h>

namespace {

const QString alice = QStringLiteral("alice");

TEST(fault_source, disappears_in_mid_run)
{
    const list_counts counts = {40, 40, 4, 10};
    source_builder source;
    fill_home(source, alice, counts);
    host_driver host(source, {alice});
    ASSERT_EQ(host.run(true).records, counts.rows());
    const table_rows full = rows_in(source.database());
    const struct
    {
        const char *name;
        qint64 at_record;
        int list_lines;   // lists that were already found, but can no longer be read
        int folder_lines; // places that are not there any more
    } rows[] = {
        {"while bookmarks are read", 10, 30 + 1, 2}, {"between two tabs", 40, 1, 2},
        {"while history is read", 50, 30 + 1, 1},    {"while transfers are read", 95, 2 + 1, 0},
        {"before the preferences", 120, 1, 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        host.on_records = [&](qint64 records) {
            if (records == row.at_record)
                QDir(source.root()).removeRecursively();
        };
        const run_outcome outcome = host.run(true);
        fill_home(source, alice, counts);
        EXPECT_TRUE(outcome.ended());
        EXPECT_EQ(outcome.tabs, tab_count);
        EXPECT_EQ(outcome.told("m_plist "), row.list_lines);
        EXPECT_EQ(outcome.told("folder open ------FAILED------"), row.folder_lines);
        EXPECT_GE(outcome.records, row.at_record);
        const table_rows found = rows_in(source.database());
        EXPECT_EQ(row_count(found), outcome.records);
        // Items of a list that was loaded are still told, without what the copies said.
        for (const size_t i : {size_t{0}, size_t{1}, size_t{3}})
            EXPECT_TRUE(begins_with(full[i], found[i])) << extracted_tables[i];
    }
}

TEST(fault_source, folders_and_files_without_permission)
{
    const list_counts counts = {10, 10, 2, 3};
    const struct
    {
        const char *name;
        const char *path; // below the home
        mode_t mode;
        int lost_rows;
        int lines;
        const char *line; // with the path behind it, where that is told
        bool names_path;
    } rows[] = {
        {"home", "", 0000, 30, 1, "[find_source_file] folder open ------FAILED------", true},
        {"home may be listed only", "", 0444, 30, 1,
         "[find_source_file] folder open ------FAILED------", true},
        {"the client's folder", "/Library/Application Support/Cyberduck", 0000, 26, 1,
         "[find_source_file] folder open ------FAILED------", true},
        {"one place", "/Library/Application Support/Cyberduck/Bookmarks", 0000, 10, 1,
         "[xcode_extract_bookmarks] folder open ------FAILED------", true},
        {"folder in a place", "/Library/Application Support/Cyberduck/History/sub", 0000, 1, 1,
         "[xcode_extract_history] folder open ------FAILED------", true},
        {"place may be listed only", "/Library/Application Support/Cyberduck/Bookmarks", 0444, 10,
         10, "[xcode_extract_bookmarks] m_plist open ------FAILED------", false},
        {"bookmark", "/Library/Application Support/Cyberduck/Bookmarks/3.duck", 0000, 1, 1,
         "[xcode_extract_bookmarks] m_plist open ------FAILED------", true},
        {"history", "/Library/Application Support/Cyberduck/History/3.duck", 0000, 1, 1,
         "[xcode_extract_history] m_plist is nil ------FAILED------", true},
        {"transfer", "/Library/Application Support/Cyberduck/Transfers/1.cyberducktransfer", 0000,
         3, 1, "[xcode_extract_transfers] m_plist open ------FAILED------", true},
        {"preferences", "/Library/Preferences/ch.sudo.cyberduck.plist", 0000, 4, 1,
         "[xcode_extract_preferences] m_plist open  ---FAILED--- ", false},
        {"folder of the local copies", "/Downloads", 0000, 0, 6,
         "[xcode_extract_transfers] folder open ------FAILED------", true},
        {"local copy", "/Downloads/1", 0000, 0, 0, "FAILED", false},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        source_builder source;
        fill_home(source, alice, counts);
        fill_home(source, QStringLiteral("zoe"), counts);
        const QString home = source.root() + home_of(alice);
        QFile::rename(home + QLatin1String(older_history) + "7.duck",
                      source.make_folder(home_of(alice) + QLatin1String(older_history) + "sub") +
                          "/7.duck");
        run_unprivileged(source.outside(QStringLiteral(".")), [&] {
            const QString path = home + QLatin1String(row.path);
            ASSERT_EQ(::chmod(QFile::encodeName(path), row.mode), 0);
            const run_outcome outcome = host_driver(source, {alice, QStringLiteral("zoe")}).run();
            ::chmod(QFile::encodeName(path), 0755);
            EXPECT_TRUE(outcome.ended());
            EXPECT_EQ(outcome.tabs, tab_count);
            EXPECT_EQ(outcome.records, 2 * counts.rows() - row.lost_rows);
            EXPECT_EQ(row_count(rows_in(source.database())), outcome.records);
            EXPECT_EQ(outcome.told("FAILED"), row.lines) << outcome.log.join('\n').toStdString();
            EXPECT_EQ(outcome.told(row.line), row.lines);
            if (row.names_path) {
                EXPECT_EQ(outcome.told(qPrintable(QLatin1String(row.line) + path)), row.lines);
            }
        });
    }
}

TEST(fault_source, folders_as_local_copies_that_may_not_be_listed)
{
    source_builder source;
    const QString home = home_of(alice);
    source.write(home + QLatin1String(older_transfers) + "a.cyberducktransfer", transfer_list(2));
    const QString whole = source.make_folder(home + "/Downloads/0");
    source.write(home + "/Downloads/1/file", "12345");
    const QString part = source.make_folder(home + "/Downloads/1/sub");
    run_unprivileged(source.outside(QStringLiteral(".")), [&] {
        for (const QString &folder : {whole, part})
            ASSERT_EQ(::chmod(QFile::encodeName(folder), 0), 0);
        const run_outcome outcome = host_driver(source, {alice}).run();
        for (const QString &folder : {whole, part}) {
            ::chmod(QFile::encodeName(folder), 0755);
            const QString line =
                QStringLiteral("[xcode_extract_transfers] folder open ------FAILED------") + folder;
            EXPECT_EQ(outcome.told(qPrintable(line)), 1) << line.toStdString();
        }
        const QList<QVariantMap> rows = source.rows(QStringLiteral("transfers"));
        ASSERT_EQ(rows.size(), 2);
        EXPECT_TRUE(rows.at(0).value(QStringLiteral("file_size")).isNull());
        EXPECT_EQ(rows.at(1).value(QStringLiteral("file_size")), QVariant(5));
    });
}

// Where the older place may not be looked into, a readable container is not given up.
TEST(fault_source, container_is_read_where_the_older_place_is_denied)
{
    source_builder source;
    fill_home(source, alice, {2, 0, 0, 0, 0});
    source.write(home_of(alice) + QLatin1String(container_bookmarks) + "c.duck",
                 connection_list(1, 1));
    run_unprivileged(source.outside(QStringLiteral(".")), [&] {
        const QByteArray older =
            QFile::encodeName(source.root() + home_of(alice) + "/Library/Application Support");
        ASSERT_EQ(::chmod(older, 0000), 0);
        const run_outcome outcome = host_driver(source, {alice}).run();
        ::chmod(older, 0755);
        EXPECT_EQ(outcome.records, 1);
        EXPECT_EQ(outcome.told("FAILED"), 1);
    });
}

// Keeps changing files of a source, their size among it, until it goes.
class restless_files
{
public:
    restless_files(const QStringList &paths, const QList<QByteArray> &contents)
        : thread_([this, paths, contents] {
            for (int turn = 0; !stopped_; ++turn) {
                QFile file(paths.at(turn % paths.size()));
                const QByteArray &content = contents.at(turn % contents.size());
                if (file.open(QIODevice::ReadWrite) && file.resize(content.size() / 3))
                    file.write(content);
                ++turns_;
            }
        })
    {
    }
    ~restless_files()
    {
        stopped_ = true;
        thread_.join();
    }
    restless_files(const restless_files &) = delete;
    restless_files &operator=(const restless_files &) = delete;
    [[nodiscard]] int turns() const { return turns_; }

private:
    std::atomic<bool> stopped_{false};
    std::atomic<int> turns_{0};
    std::thread thread_;
};

TEST(fault_source, files_grow_and_shrink_while_they_are_read)
{
    constexpr int runs = 40;
    const list_counts counts = {10, 10, 4, 6};
    source_builder source;
    fill_home(source, alice, counts);
    QStringList paths;
    const QString home = source.root() + home_of(alice);
    for (const char *place : {older_bookmarks, older_history})
        for (int i = 0; i < 10; i += 2)
            paths.append(home + QLatin1String(place) + QString::number(i) + ".duck");
    paths.append(home + QLatin1String(older_transfers) + "1.cyberducktransfer");
    for (const char *copy : {"0", "1", "._1", "2"})
        paths.append(home + "/Downloads/" + QLatin1String(copy));
    const QList<QByteArray> contents = {
        connection_list(1, 20), connection_list(2, 300'000),   transfer_list(6),
        transfer_list(500),     QByteArray(2'000'000, '\xff'), {}};
    const restless_files restless(paths, contents);
    host_driver host(source, {alice});
    int failed = 0;
    for (int i = 0; i < runs; ++i) {
        const run_outcome outcome = host.run(true);
        ASSERT_TRUE(outcome.ended());
        const table_rows rows = rows_in(source.database());
        ASSERT_EQ(row_count(rows), outcome.records);
        // Each list is a row or a line; those that are left alone are rows.
        ASSERT_EQ(rows[0].size() + outcome.told("xcode_extract_bookmarks] m_plist"), 10);
        ASSERT_EQ(rows[1].size() + outcome.told("xcode_extract_history] m_plist"), 10);
        ASSERT_GE(rows[0].size(), 5);
        ASSERT_GE(rows[1].size(), 5);
        ASSERT_GE(rows[2].size(), 3 * counts.items);
        ASSERT_EQ(rows[3].size(), counts.preferences);
        failed += outcome.told("m_plist");
    }
    EXPECT_GT(restless.turns(), runs);
    EXPECT_GT(failed, 0);
}

} // namespace
