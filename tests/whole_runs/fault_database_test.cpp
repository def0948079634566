// A result database that cannot be written as it should be: the run ends regularly, the log tells
// of each failure, the rows of earlier runs stay, the count is that of the rows that are there, and
// the next run without the fault is complete.
#include "results/rows/result_connection.h"
#include "tests/fixtures/child_process.h"
#include "samples/filled_source.h"
#include "tests/fixtures/host_driver.h"
#include "tests/fixtures/printing.h"
#include "tests/fixtures/result_rows.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlError>

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <future>
#include <optional>
#include <thread>

#include <sys/resource.h>
#include <sys/stat.h>

namespace {

constexpr char insert_failed_bookmarks[] = "insert in bookmarks --------FAILED-------";
constexpr char insert_failed_history[] = "insert in history ---------FAILED----- ";
constexpr char insert_failed_transfers[] = "insert in transfers ---------FAILED--------";
constexpr char insert_failed_preferences[] = "Insertion Query -----FAILED-----";
constexpr char commit_failed[] = "commit ------FAILED------";
constexpr const char *insert_failures[] = {insert_failed_bookmarks, insert_failed_history,
                                           insert_failed_transfers, insert_failed_preferences};

class fault_database : public ::testing::Test
{
protected:
    // A source, and the rows of a first run over it.
    void fill(const list_counts &wanted)
    {
        counts = wanted;
        fill_home(source, alice, counts);
        host_driver host(source, {alice});
        EXPECT_EQ(host.run().records, counts.rows());
        earlier = rows_in(source.database());
        ASSERT_EQ(row_count(earlier), counts.rows());
    }

    // The first run's rows stay, new ones are as many as the host was told.
    void expect_kept_and_counted(const run_outcome &outcome)
    {
        EXPECT_TRUE(outcome.ended());
        EXPECT_EQ(outcome.tabs, tab_count);
        const result_reader database(source.database());
        EXPECT_EQ(database.integrity(), QStringLiteral("ok"));
        const table_rows rows = database.all_rows();
        for (size_t i = 0; i < rows.size(); ++i)
            EXPECT_TRUE(begins_with(rows[i], earlier[i])) << extracted_tables[i];
        EXPECT_EQ(row_count(rows) - row_count(earlier), outcome.records);
    }

    void expect_complete_run()
    {
        const int before = row_count(rows_in(source.database()));
        host_driver host(source, {alice});
        EXPECT_EQ(host.run().records, counts.rows());
        EXPECT_EQ(row_count(rows_in(source.database())), before + counts.rows());
    }

    [[nodiscard]] static int all_insert_failures(const run_outcome &outcome)
    {
        int failures = 0;
        for (const char *text : insert_failures)
            failures += outcome.told(text);
        return failures;
    }

    source_builder source;
    const QString alice = QStringLiteral("alice");
    list_counts counts;
    table_rows earlier;
};

// No more than this many bytes in one file; writing beyond fails instead of ending the process.
class file_size_limit
{
public:
    explicit file_size_limit(qint64 bytes)
    {
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &before_), 0);
        rlimit limit = before_;
        limit.rlim_cur = static_cast<rlim_t>(bytes);
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~file_size_limit()
    {
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &before_), 0);
        std::signal(SIGXFSZ, handler_);
    }
    file_size_limit(const file_size_limit &) = delete;
    file_size_limit &operator=(const file_size_limit &) = delete;

private:
    rlimit before_ = {};
    void (*handler_)(int) = nullptr;
};

TEST_F(fault_database, no_room_for_the_rows_of_one_table)
{
    fill({5, 600, 3, 2, 4, 400});
    std::optional<run_outcome> outcome;
    {
        const file_size_limit limit(QFileInfo(source.database()).size() + 64 * 1024);
        outcome = host_driver(source, {alice}).run();
    }
    expect_kept_and_counted(*outcome);
    EXPECT_EQ(outcome->told(commit_failed), 1) << outcome->log.last().toStdString();
    EXPECT_EQ(outcome->records, counts.rows() - counts.history); // the others fit
    expect_complete_run();
}

// SQLite then gives up the transaction while rows are still coming.
TEST_F(fault_database, no_room_for_what_the_cache_cannot_hold)
{
    fill({900, 5, 3, 2, 4, 8 * 1024});
    QByteArray preferences;
    for (const char *key : {"browser.serialize", "browser.showHidden", "queue.download.folder",
                            "browser.charset.encoding"})
        preferences += text_entry(key, QByteArray(1 << 20, 'v').constData());
    source.write(home_of(alice) + QLatin1String(preferences_path), xml_dictionary(preferences));
    std::optional<run_outcome> outcome;
    {
        const file_size_limit limit(QFileInfo(source.database()).size() + 1024 * 1024);
        outcome = host_driver(source, {alice}).run();
    }
    expect_kept_and_counted(*outcome);
    EXPECT_GT(outcome->told(insert_failed_bookmarks), 0);
    EXPECT_EQ(outcome->told(commit_failed),
              outcome->told("commit ------FAILED------disk I/O error"));
    EXPECT_GT(outcome->told("[xcode_extract_bookmarks] commit ------FAILED------"), 0);
    EXPECT_GT(outcome->told("[xcode_extract_preferences] commit ------FAILED------"), 0);
    EXPECT_GE(outcome->records, counts.rows() - counts.bookmarks - counts.preferences);
    expect_complete_run();
}

TEST_F(fault_database, folder_and_file_are_read_only)
{
    fill({20, 20, 3, 2});
    const QString folder = QFileInfo(source.database()).path();
    const QString database = source.database();
    const QByteArray folder_path = QFile::encodeName(folder);
    const QByteArray database_path = QFile::encodeName(database);
    const struct
    {
        const char *name;
        mode_t database_mode;
    } rows[] = {{"no journal can be made", 0644}, {"nothing can be written", 0444}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        ASSERT_EQ(::chmod(folder_path, 0555), 0);
        ASSERT_EQ(::chmod(database_path, row.database_mode), 0);
        run_unprivileged(source.outside(QStringLiteral(".")), [this] {
            const run_outcome outcome = host_driver(source, {alice}).run();
            expect_kept_and_counted(outcome);
            EXPECT_EQ(outcome.records, 0);
            EXPECT_EQ(all_insert_failures(outcome), counts.rows());
        });
    }
    ASSERT_EQ(::chmod(folder_path, 0755), 0);
    ASSERT_EQ(::chmod(database_path, 0644), 0);
    expect_complete_run();
    ASSERT_TRUE(QFile::remove(database));
    ASSERT_EQ(::chmod(folder_path, 0555), 0);
    run_unprivileged(source.outside(QStringLiteral(".")), [this] {
        const run_outcome outcome = host_driver(source, {alice}).run();
        EXPECT_TRUE(outcome.ended());
        EXPECT_EQ(outcome.tabs, tab_count);
        EXPECT_EQ(outcome.records, 0);
        EXPECT_EQ(outcome.told("destination_db  open ------FAILED------"), 3);
        EXPECT_EQ(outcome.told("Destination Db opening for table creation---------FAILED"), 1);
        EXPECT_FALSE(QFileInfo::exists(source.database()));
    });
}

TEST_F(fault_database, locked_by_another_process_is_waited_for_once)
{
    fill({100, 100, 20, 5});
    const struct
    {
        const char *name;
        QStringList begin;
        bool clear; // before the run, as the host may ask for
    } rows[] = {
        {"nobody else may read", {QStringLiteral("BEGIN EXCLUSIVE")}, true},
        {"nobody else may write", {QStringLiteral("BEGIN IMMEDIATE")}, false},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        database_lock lock(source.database(), row.begin);
        const run_outcome outcome = host_driver(source, {alice}).run(row.clear);
        lock.release();
        expect_kept_and_counted(outcome);
        EXPECT_EQ(outcome.records, 0);
        EXPECT_EQ(all_insert_failures(outcome), counts.rows());
        EXPECT_EQ(outcome.told(commit_failed), 0);
        EXPECT_GT(outcome.elapsed_ms, 4500);
        EXPECT_LT(outcome.elapsed_ms, 9500); // a second wait would end at 10,000
    }
    expect_complete_run();
}

TEST_F(fault_database, an_endless_reader_is_waited_for_at_every_commit_with_rows)
{
    fill({20, 20, 0, 0, 0});
    database_lock lock(source.database(),
                       {QStringLiteral("BEGIN"), QStringLiteral("select * from history")});
    const run_outcome outcome = host_driver(source, {alice}).run();
    lock.release();
    expect_kept_and_counted(outcome);
    EXPECT_EQ(outcome.records, 0);
    EXPECT_EQ(all_insert_failures(outcome), 0);
    EXPECT_EQ(outcome.told(commit_failed), 2);
    EXPECT_GT(outcome.elapsed_ms, 9500);
    EXPECT_LT(outcome.elapsed_ms, 14500);
}

// After a wait in vain.
TEST_F(fault_database, rows_that_go_in_are_waited_for_when_they_are_committed)
{
    fill({2, 1, 1, 1});
    for (const bool goes_before_begin : {true, false}) {
        SCOPED_TRACE(goes_before_begin);
        results::lock_wait wait;
        wait.note(QSqlError({}, {}, QSqlError::StatementError, QStringLiteral("5")));
        ASSERT_TRUE(wait.is_spent());
        results::result_connection connection(QStringLiteral("late"), source.database(), wait);
        database_lock writer(source.database(), {QStringLiteral("BEGIN EXCLUSIVE")});
        if (goes_before_begin)
            writer.release();
        ASSERT_TRUE(connection.open());
        EXPECT_EQ(wait.is_spent(), !goes_before_begin);
        writer.release();
        const char insert[] = "insert into history (hostname) values ('late')";
        EXPECT_TRUE(connection.make_writer(insert)->insert(nullptr, 0));
        std::promise<bool> reads;
        std::thread reader([&] {
            {
                QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), alice);
                db.setDatabaseName(source.database());
                db.open();
                QSqlQuery query(QStringLiteral("select * from bookmarks"), db);
                reads.set_value(query.next());
                std::this_thread::sleep_for(std::chrono::milliseconds(300));
            }
            QSqlDatabase::removeDatabase(alice);
        });
        EXPECT_TRUE(reads.get_future().get());
        EXPECT_TRUE(connection.finish()) << connection.error_text().toStdString();
        reader.join();
        EXPECT_FALSE(wait.is_spent());
    }
}

TEST_F(fault_database, rows_come_through_once_the_lock_is_gone)
{
    fill({100, 100, 20, 5});
    database_lock lock(source.database(), {QStringLiteral("BEGIN EXCLUSIVE")});
    host_driver host(source, {alice});
    host.on_tabs = [&lock](int) { lock.release(); }; // after the bookmarks
    const run_outcome outcome = host.run();
    expect_kept_and_counted(outcome);
    EXPECT_EQ(outcome.records, counts.rows() - counts.bookmarks);
    EXPECT_EQ(outcome.told(insert_failed_bookmarks), counts.bookmarks);
}

void overwrite(const QString &path, qint64 offset, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.seek(offset));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

TEST_F(fault_database, damaged)
{
    fill({300, 300, 20, 5, 4, 200});
    const QString path = source.database();
    const QByteArray junk(4096, 'x');
    ASSERT_TRUE(QFile::copy(path, source.outside(QStringLiteral("sound"))));
    const struct
    {
        const char *name;
        std::function<void()> damage;
        bool can_append = false; // the damaged pages are not in the way
    } rows[] = {
        {"no database at all", [&] { overwrite(path, 0, QByteArray(16384, 'x')); }},
        {"wrong name in the header", [&] { overwrite(path, 0, "SQLite format 4"); }},
        {"schema overwritten", [&] { overwrite(path, 108, junk.left(2000)); }},
        {"pages in the middle overwritten",
         [&] {
             for (qint64 at = 16384; at + 8192 < QFileInfo(path).size(); at += 16384)
                 overwrite(path, at, junk);
         },
         true},
        {"cut off in the middle", [&] { QFile::resize(path, QFileInfo(path).size() / 2); }},
        {"cut off in the header", [&] { QFile::resize(path, 50); }},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        QFile::remove(path);
        ASSERT_TRUE(QFile::copy(source.outside(QStringLiteral("sound")), path));
        row.damage();
        const qint64 size_before = QFileInfo(path).size();
        const run_outcome outcome = host_driver(source, {alice}).run();
        EXPECT_TRUE(outcome.ended());
        EXPECT_EQ(outcome.tabs, tab_count);
        EXPECT_EQ(outcome.records + all_insert_failures(outcome), counts.rows());
        EXPECT_EQ(all_insert_failures(outcome) == 0, row.can_append);
        EXPECT_GE(QFileInfo(path).size(), size_before); // nothing is thrown away
    }
    QFile::resize(path, 0); // an empty file is an empty database
    EXPECT_EQ(host_driver(source, {alice}).run().records, counts.rows());
}

TEST_F(fault_database, table_of_an_older_run_lacks_a_column)
{
    fill({20, 20, 3, 2});
    source.execute(QStringLiteral("create table older as select * from history"));
    source.execute(QStringLiteral("drop table history"));
    source.execute(QStringLiteral("create table history(INT INTEGER PRIMARY KEY, hostname)"));
    source.execute(QStringLiteral("insert into history select INT, hostname from older"));
    earlier = rows_in(source.database());
    ASSERT_EQ(earlier[1].size(), counts.history);
    const run_outcome outcome = host_driver(source, {alice}).run();
    expect_kept_and_counted(outcome);
    EXPECT_EQ(outcome.records, counts.rows() - counts.history);
    EXPECT_EQ(outcome.told(insert_failed_history), counts.history);
    EXPECT_EQ(outcome.told(" --Error--table history has no column named"), counts.history);
}

} // namespace
