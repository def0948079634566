// Runs of the extractors over made sources: the words of the log, what is left out.
// Rows are compared value by value by expected_rows_test.
#include "extraction/bookmarks.h"
#include "extraction/history.h"
#include "extraction/preferences.h"
#include "extraction/transfers.h"
#include "evidence/files/file_names.h"
#include "tests/fixtures/log_capture.h"
#include "samples/binary_list_builder.h"
#include "tests/fixtures/printing.h"
#include "tests/fixtures/shown_attribute.h"
#include "tests/fixtures/source_builder.h"
#include "log/visible_text.h"

#include <QFileInfo>
#include <QSqlDatabase>

#include <gtest/gtest.h>

#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using extractor = void (cyberduck_macos::*)();

const QString alice = QStringLiteral("alice");

QString in_home(const char *place, const char *name)
{
    return QStringLiteral("Users/alice") + QLatin1String(place) + QLatin1String(name);
}

QByteArray transfer(const QByteArray &items)
{
    return xml_dictionary("<key>Host</key><dict>" + text_entry("Hostname", "h") +
                          "</dict><key>Items</key><array>" + items + "</array>");
}

QByteArray item(const QByteArray &local_path)
{
    return "<dict><key>Local Dictionary</key><dict>" + text_entry("Path", local_path.constData()) +
           "</dict></dict>";
}

class extraction : public ::testing::Test
{
protected:
    // The log of one extractor's run over alice's files.
    QStringList run(extractor tested)
    {
        const auto adapter = source.adapter({alice});
        log.take_messages();
        (adapter.get()->*tested)();
        return log.take_messages();
    }

    log_capture log;
    source_builder source;
};

TEST_F(extraction, failing_lists_cost_one_line_each_in_every_extractor)
{
    const struct
    {
        const char *place;
        extractor tested;
        const char *name; // of a list file
        const char *starts;
        const char *unreadable;
        const char *outside;
        const char *ends;
    } rows[] = {
        {older_bookmarks, &cyberduck_macos::xcode_extract_bookmarks, "x.duck",
         "[xcode_extract_bookmarks] starts",
         "[xcode_extract_bookmarks] m_plist open ------FAILED------",
         "[xcode_extract_bookmarks] outside the source ------FAILED------",
         "[xcode_extract_bookmarks] end"},
        {older_history, &cyberduck_macos::xcode_extract_history, "x.duck",
         "[xcode_extract_history] starts",
         "[xcode_extract_history] m_plist is nil ------FAILED------",
         "[xcode_extract_history] outside the source ------FAILED------",
         "[xcode_extract_history] end"},
        {older_transfers, &cyberduck_macos::xcode_extract_transfers, "x.cyberducktransfer",
         "[xcode_extract_transfers] starts",
         "[xcode_extract_transfers] m_plist open ------FAILED------",
         "[xcode_extract_transfers] outside the source ------FAILED------",
         "[xcode_extract_transfers] end"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.starts);
        const auto place = [&row](const char *folder) {
            return in_home(row.place, folder) + QLatin1String(row.name);
        };
        const QStringList unreadable = {
            source.write(place("bro\nken-"), "<plist><dict><key>"),
            source.make_folder(place("folder-")),
            source.write(place("deep/er/array-"), "<plist><array/></plist>")};
        const QString secret = source.outside(QStringLiteral("secret"));
        source.link(place("away-"), secret);
        source.link(place("dangling-"), QStringLiteral("nowhere"));
        source.write(place(".hidden-"), "broken");
        source.write(place(".hidden/"), "broken");
        source.write(place("wrong-case-") + QStringLiteral(".DUCK"), "broken");
        ASSERT_EQ(::mkfifo(QFile::encodeName(source.root() + place("fifo-")).constData(), 0600), 0);

        QStringList expected;
        for (const QString &path : unreadable)
            expected.append(QLatin1String(row.unreadable) + logging::visible_text(path));
        expected.append(QLatin1String(row.outside) + source.root() + place("away-"));
        expected.sort();
        QStringList lines = run(row.tested);
        ASSERT_GE(lines.size(), 2);
        EXPECT_EQ(lines.takeFirst(), QLatin1String(row.starts));
        EXPECT_EQ(lines.takeLast(), QLatin1String(row.ends));
        lines.sort();
        EXPECT_EQ(lines, expected);
    }
    for (const char *table : {"bookmarks", "history", "transfers"})
        EXPECT_TRUE(source.rows(QLatin1String(table)).isEmpty()) << table;
}

#ifndef __APPLE__ // whose file systems take no such names
// A row would show another path than the source has.
TEST_F(extraction, lists_whose_path_is_no_text_are_told)
{
    const QByteArray bookmarks = QFile::encodeName(source.root() + in_home(older_bookmarks, ""));
    const auto move_away = [&](const QByteArray &to) {
        const QString path = source.write(in_home(older_bookmarks, "new/x.duck"),
                                          xml_dictionary(text_entry("Nickname", "x")));
        EXPECT_EQ(::rename(QFileInfo(path).path().toUtf8(), bookmarks + to), 0);
    };
    move_away("\xff");
    move_away("\xef\xbb\xbf"); // a byte-order mark, which is text
    EXPECT_EQ(::link(bookmarks + "\xff/x.duck", bookmarks + "\xff.duck"), 0);
    EXPECT_EQ(::link(bookmarks + "\xff/x.duck", bookmarks + "\xef\xbb\xbfy.duck"), 0);
    EXPECT_EQ(run(&cyberduck_macos::xcode_extract_bookmarks)
                  .filter(QStringLiteral("target_file open ------FAILED------"))
                  .size(),
              2);
    QStringList files;
    for (const QVariantMap &row : source.rows(QStringLiteral("bookmarks")))
        files.append(row.value(QStringLiteral("source_file")).toString().section("Bookmarks/", 1));
    files.sort();
    EXPECT_EQ(files,
              QStringList({QStringLiteral("\ufeff/x.duck"), QStringLiteral("\ufeffy.duck")}));
    std::filesystem::remove_all(bookmarks.toStdString()); // Qt does not find them
}
#endif

TEST_F(extraction, failed_inserts_are_told_and_cost_one_row_each)
{
    source.write(in_home(older_bookmarks, "a.duck"), xml_dictionary({}));
    source.write(in_home(older_history, "a.duck"), xml_dictionary({}));
    source.write(in_home(older_transfers, "a.cyberducktransfer"), transfer(item("~/a")));
    const auto frame = source.frame({alice});
    const struct
    {
        const char *table;
        extractor tested;
        QString first;
        const char *before_error;
        const char *before_query;
        const char *statement;
    } rows[] = {
        {"bookmarks", &cyberduck_macos::xcode_extract_bookmarks,
         QStringLiteral("[extract_bookmarks] insert in bookmarks --------FAILED-------"),
         "[extract_bookmarks]", "", ::extraction::bookmarks::own_profile.statement},
        {"history", &cyberduck_macos::xcode_extract_history,
         QStringLiteral(" insert in history ---------FAILED----- ") + source.database(),
         " --Error--", "Query :- ", ::extraction::history::own_profile.statement},
        {"transfers", &cyberduck_macos::xcode_extract_transfers,
         QStringLiteral("[xcode_extract_transfers] insert in transfers ---------FAILED--------"),
         "[xcode_extract_transfers]", "", ::extraction::transfers::own_profile.statement},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.table);
        const auto adapter = source.adapter({alice});
        source.execute(QStringLiteral("drop table %1").arg(QLatin1String(row.table)));
        log.take_messages();
        (adapter.get()->*row.tested)();
        const QStringList lines = log.take_messages();
        const int failed = lines.indexOf(row.first);
        ASSERT_GT(failed, 0) << lines.join(QLatin1Char('\n')).toStdString();
        EXPECT_TRUE(lines.at(failed + 1)
                        .startsWith(QLatin1String(row.before_error) +
                                    QStringLiteral("no such table: ") + QLatin1String(row.table)));
        EXPECT_EQ(lines.at(failed + 2),
                  QLatin1String(row.before_query) + QLatin1String(row.statement));
    }
}

TEST_F(extraction, unopenable_database_ends_each_extractor)
{
    cyberduck_macos adapter;
    const QString nowhere = source.outside(QStringLiteral("missing/db.sqlite"));
    adapter.macos_set_destination_location({}, {}, nowhere);
    adapter.xcode_extract_bookmarks();
    adapter.xcode_extract_history();
    adapter.xcode_extract_transfers();
    adapter.xcode_extract_preferences(QStringLiteral("/x"), alice);
    adapter.xcode_extract_preferences(QStringLiteral("  "), alice);
    QStringList expected;
    for (const char *name : {"bookmarks", "history", "transfers"}) {
        const QString prefix = QStringLiteral("[xcode_extract_%1] ").arg(QLatin1String(name));
        expected += {prefix + QStringLiteral("starts"),
                     prefix + QStringLiteral("destination_db  open ------FAILED------"),
                     prefix + QStringLiteral("end with failure")};
    }
    expected += {QStringLiteral(" Starts"),
                 QStringLiteral("[to open destination database-----FAILED-------"),
                 QStringLiteral("unable to open database file Error opening database"), nowhere,
                 QStringLiteral(" Starts")};
    EXPECT_EQ(log.take_messages(), expected);
}

TEST_F(extraction, preferences_tell_their_failures)
{
    const QString path = QString(in_home(preferences_path, ""));
    const auto lines_of = [this, &path] {
        const auto adapter = source.adapter({alice});
        log.take_messages();
        adapter->xcode_extract_preferences(source.root() + path, alice);
        return log.take_messages();
    };
    source.write(path, xml_dictionary(text_entry("queue.upload.action", "similar")));
    EXPECT_EQ(lines_of().size(), 3); // and its tables are made
    source.execute(QStringLiteral("alter table preferences rename to kept"));
    source.execute(QStringLiteral("create table preferences(x)"));
    const QStringList failed = lines_of();
    ASSERT_EQ(failed.size(), 6);
    EXPECT_EQ(failed.at(2), QStringLiteral("Insertion Query -----FAILED-----"));
    EXPECT_TRUE(failed.at(3).startsWith(QStringLiteral("---Error---table preferences has no")));
    EXPECT_EQ(failed.at(4), QStringLiteral("Query :- ") +
                                QLatin1String(::extraction::preferences::own_profile.statement));
    QFile::remove(source.root() + path);
    source.link(path, source.outside(QStringLiteral("secret")));
    EXPECT_EQ(lines_of().constLast(),
              QStringLiteral("[xcode_extract_preferences] outside the source ------FAILED------") +
                  source.root() + path);
}

TEST_F(extraction, missing_is_null_and_blank_is_empty)
{
    source.write(in_home(container_bookmarks, "a.duck"),
                 xml_dictionary(text_entry("Nickname", " \n ") + text_entry("Hostname", " h ") +
                                "<key>Port</key><integer>22</integer>" +
                                text_entry("Access Timestamp", "1589021112345")));
    run(&cyberduck_macos::xcode_extract_bookmarks);
    const QList<QVariantMap> rows = source.rows(QStringLiteral("bookmarks"));
    ASSERT_EQ(rows.size(), 1);
    const auto value = [&rows](const char *column) {
        return rows.constFirst().value(QLatin1String(column));
    };
    EXPECT_EQ(value("nickname"), QVariant(QString(QLatin1String(""))));
    EXPECT_EQ(value("hostname"), QVariant(QStringLiteral("h")));
    EXPECT_EQ(value("access_timestamp"), QVariant(1589021112LL));
    for (const char *column : {"port", "upload_folder", "artifacts_relation_source_file"})
        EXPECT_FALSE(value(column).isValid()) << column;
}

TEST_F(extraction, half_a_character_names_no_other_file_and_is_stored_as_a_replacement)
{
    const QString copy = source.write(QStringLiteral("Users/alice/a.txt"), "12345");
    source.write(QStringLiteral("Users/alice?/a.txt"), "half a character is no question mark");
    binary_list_builder note;
    const int text = note.wide_text(QStringLiteral("a ") + QChar(0xd83d) + QStringLiteral(" note"));
    if (!set_attribute(evidence::encoded_name(copy), "user.com.apple.metadata:kMDItemFinderComment",
                       note.list(quint64(text))))
        GTEST_SKIP() << "the temporary folder's file system has no extended attributes";
    // The first unit of a recorded path is cut off: of this one, half a character stays.
    source.write(in_home(older_transfers, "a.cyberducktransfer"),
                 transfer(item("😀/a.txt") + item("~/a.txt")));
    const auto adapter = source.adapter({alice});
    adapter->macos_set_extended_attributes_list({QStringLiteral("kMDItemFinderComment")});
    adapter->xcode_extract_transfers();
    const QList<QVariantMap> rows = source.rows(QStringLiteral("transfers"));
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(rows.at(0).value(QStringLiteral("file_exist")), QVariant(QStringLiteral("NO")));
    EXPECT_EQ(rows.at(0).value(QStringLiteral("local_path")),
              QVariant(QStringLiteral("/Users/alice\uFFFD/a.txt")));
    EXPECT_EQ(rows.at(1).value(QStringLiteral("extended_attributes_value_for_search")),
              QVariant(QStringLiteral("a \uFFFD note")));
    EXPECT_TRUE(rows.at(1)
                    .value(QStringLiteral("extended_attributes_key_value"))
                    .toString()
                    .contains(QStringLiteral(">a \uFFFD note<")));
}

TEST_F(extraction, a_link_that_leaves_the_source_is_not_the_clients_folder)
{
    const QString older = QStringLiteral("Users/alice/Library/Application Support/Cyberduck");
    source.make_folder(QStringLiteral("Users/alice/Library/Application Support"));
    source.link(older, QStringLiteral("/opt/nowhere"));
    source.write(QStringLiteral("Users/alice") + QLatin1String(container_bookmarks) + "a.duck",
                 xml_dictionary({}));
    const auto adapter = source.adapter({alice});
    const QString line =
        QStringLiteral("[find_source_file] outside the source ------FAILED------") + source.root() +
        older + QStringLiteral("/Bookmarks/");
    EXPECT_TRUE(log.take_messages().contains(line));
    adapter->xcode_extract_bookmarks();
    EXPECT_EQ(source.rows(QStringLiteral("bookmarks")).size(), 1);
}

TEST_F(extraction, the_librarys_cancel_flag_alone_ends_every_extractor)
{
    for (int i = 0; i < 5; ++i) {
        for (const char *place : {older_bookmarks, older_history})
            source.write(in_home(place, "") + QStringLiteral("%1.duck").arg(i), xml_dictionary({}));
    }
    source.write(in_home(older_transfers, "a.cyberducktransfer"),
                 transfer(item("~/a") + item("~/b") + item("~/c")));
    for (const extractor tested :
         {&cyberduck_macos::xcode_extract_bookmarks, &cyberduck_macos::xcode_extract_history,
          &cyberduck_macos::xcode_extract_transfers}) {
        plugin_static_function::set_cancel_extraction(false);
        const auto adapter = source.adapter({alice});
        adapter->set_signal_interval_ms(-1); // at every row
        QObject::connect(
            adapter.get(), &cyberduck_macos::signal_extracted_records_of_plugin_macos,
            [](qint64 records) { plugin_static_function::set_cancel_extraction(records == 2); });
        log.take_messages();
        (adapter.get()->*tested)();
        EXPECT_EQ(log.take_messages().size(), 1); // no closing line
    }
    for (const char *table : {"bookmarks", "history", "transfers"})
        EXPECT_EQ(source.rows(QLatin1String(table)).size(), 2) << table;
}

TEST_F(extraction, a_run_leaves_no_connection_behind_and_appends)
{
    source.write(in_home(older_bookmarks, "a.duck"), xml_dictionary({}));
    const auto frame = source.frame({alice, {}, alice});
    frame->pub_extract_artifacts();
    const QStringList connections = QSqlDatabase::connectionNames();
    frame->pub_create_db_tables();
    frame->pub_extract_artifacts();
    EXPECT_EQ(QSqlDatabase::connectionNames(), connections);
    EXPECT_EQ(source.rows(QStringLiteral("bookmarks")).size(), 2);
    frame->pub_set_clear_db(false);
    EXPECT_EQ(source.rows(QStringLiteral("bookmarks")).size(), 2);
    frame->pub_set_clear_db(true);
    EXPECT_TRUE(source.rows(QStringLiteral("bookmarks")).isEmpty());
}

} // namespace
