// Runs of the extractors over made sources: the words of the log, what is left out, cancelling,
// and that every column of a row is where its statement says. Rows are compared value by value in
// tests/model.
#include "macos/bookmarks_extractor.h"
#include "macos/history_extractor.h"
#include "macos/preferences_extractor.h"
#include "macos/preferences_table.h"
#include "macos/transfers_extractor.h"
#include "plugin/result_tables.h"
#include "support/binary_list_builder.h"
#include "support/file_names.h"
#include "support/log_capture.h"
#include "support/printing.h"
#include "support/shown_attribute.h"
#include "support/source_builder.h"
#include "support/visible_text.h"

#include <QDateTime>
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

// The driver gives the placeholders names.
QString without_placeholders(const char *statement)
{
    const QString text = QLatin1String(statement);
    return text.left(text.indexOf(QLatin1Char('?')));
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

TEST_F(extraction, statements_name_the_columns_that_are_bound)
{
    const auto columns_of = [](const QString &statement) {
        QString list = statement.mid(statement.indexOf(QLatin1Char('(')) + 1);
        list.truncate(list.indexOf(QLatin1Char(')')));
        return list.remove(QLatin1Char(' ')).split(QLatin1Char(','));
    };
    const auto names_of = [](const auto &columns) {
        QStringList names;
        for (const auto &entry : columns)
            names.append(QLatin1String(entry.column));
        return names;
    };
    EXPECT_EQ(columns_of(macos::bookmarks_profile.statement), names_of(macos::bookmark_columns));
    EXPECT_EQ(columns_of(macos::history_profile.statement), names_of(macos::history_columns));
    EXPECT_EQ(columns_of(macos::transfers_profile.statement), names_of(macos::transfer_columns));
    EXPECT_EQ(columns_of(macos::preferences_statement),
              QStringList(QStringLiteral("bookmark")) + names_of(macos::preference_columns));
}

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
            expected.append(QLatin1String(row.unreadable) + support::visible_text(path));
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

TEST_F(extraction, transfers_without_host_or_items_are_told)
{
    source.write(in_home(older_transfers, "a.cyberducktransfer"),
                 xml_dictionary(text_entry("Host", "no dictionary")));
    EXPECT_EQ(
        run(&cyberduck_macos::xcode_extract_transfers).at(1),
        QStringLiteral("[xcode_extract_transfers] Empty host_dict Dictionary is nil --Host--"));
    source.write(in_home(older_transfers, "a.cyberducktransfer"),
                 xml_dictionary("<key>Host</key><dict/>" + text_entry("Items", "no array")));
    EXPECT_EQ(run(&cyberduck_macos::xcode_extract_transfers).at(1),
              QStringLiteral("[xcode_extract_transfers] items_array is nil "));
}

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
         "[extract_bookmarks]", "", macos::bookmarks_profile.statement},
        {"history", &cyberduck_macos::xcode_extract_history,
         QStringLiteral(" insert in history ---------FAILED----- ") + source.database(),
         " --Error--", "Query :- ", macos::history_profile.statement},
        {"transfers", &cyberduck_macos::xcode_extract_transfers,
         QStringLiteral("[xcode_extract_transfers] insert in transfers ---------FAILED--------"),
         "[xcode_extract_transfers]", "", macos::transfers_profile.statement},
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
        EXPECT_TRUE(
            lines.at(failed + 2)
                .startsWith(QLatin1String(row.before_query) + without_placeholders(row.statement)));
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
    source.write(path, "broken");
    EXPECT_EQ(
        lines_of(),
        QStringList({QStringLiteral(" Starts"),
                     QStringLiteral("[xcode_extract_preferences] m_plist open  ---FAILED--- ")}));
    source.write(path, xml_dictionary(text_entry("queue.upload.action", "similar") +
                                      "<key>unknown</key><true/>"));
    EXPECT_EQ(lines_of(),
              QStringList({QStringLiteral(" Starts"), QStringLiteral("[insert_values_fun] starts"),
                           QStringLiteral("xcode_extract_preferences Ends")}));
    EXPECT_EQ(source.rows(QStringLiteral("preferences")).constLast().value(QStringLiteral("value")),
              QVariant(QStringLiteral("Rename")));
    source.execute(QStringLiteral("alter table preferences rename to kept"));
    source.execute(QStringLiteral("create table preferences(x)"));
    const QStringList failed = lines_of();
    ASSERT_EQ(failed.size(), 6);
    EXPECT_EQ(failed.at(2), QStringLiteral("Insertion Query -----FAILED-----"));
    EXPECT_TRUE(failed.at(3).startsWith(QStringLiteral("---Error---table preferences has no")));
    EXPECT_TRUE(failed.at(4).startsWith(QStringLiteral("Query :- ") +
                                        without_placeholders(macos::preferences_statement)));
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

TEST_F(extraction, local_copies_stay_inside_the_source)
{
    const QString secret = source.outside(QStringLiteral("secret.txt"));
    QFile file(secret);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("secret");
    file.close();
    source.write(QStringLiteral("Users/alice/Documents/a.txt"), "12345");
    source.link(QStringLiteral("Users/alice/Links/inside"),
                QStringLiteral("/Users/alice/Documents"));
    source.link(QStringLiteral("Users/alice/Links/outside.txt"), secret);
    source.write(in_home(older_transfers, "a.cyberducktransfer"),
                 transfer(item("~/Links/inside/a.txt") + item("~/Links/outside.txt") +
                          item("~/../../../secret.txt") + "<string>no item</string>" + "<dict/>"));
    const QStringList lines = run(&cyberduck_macos::xcode_extract_transfers);
    EXPECT_EQ(lines.filter(QStringLiteral("outside the source")).size(), 2);
    const QList<QVariantMap> rows = source.rows(QStringLiteral("transfers"));
    ASSERT_EQ(rows.size(), 4);
    const auto exists = QStringLiteral("file_exist");
    EXPECT_EQ(rows.at(0).value(exists), QVariant(QStringLiteral("YES")));
    EXPECT_EQ(rows.at(0).value(QStringLiteral("file_size")), QVariant(5));
    for (int i = 1; i < 4; ++i) {
        EXPECT_EQ(rows.at(i).value(exists), QVariant(QStringLiteral("NO"))) << i;
        EXPECT_FALSE(rows.at(i).value(QStringLiteral("file_size")).isValid()) << i;
    }
    EXPECT_EQ(rows.at(1).value(QStringLiteral("local_path")),
              QVariant(QStringLiteral("/Users/alice/Links/outside.txt")));
}

TEST_F(extraction, attributes_of_a_local_copy_reach_columns_document_and_search_text)
{
    const QString copy = source.write(QStringLiteral("Users/alice/Documents/a.txt"), "12345");
    binary_list_builder froms;
    const int urls =
        froms.array({froms.text("https://example.org/a.zip"), froms.text("https://example.org/")});
    const QByteArray path = support::encoded_name(copy);
    if (!set_attribute(path, "user.com.apple.metadata:kMDItemWhereFroms",
                       froms.list(quint64(urls))))
        GTEST_SKIP() << "the temporary folder's file system has no extended attributes";
    ASSERT_TRUE(set_attribute(path, "user.com.apple.metadata:kMDItemFinderComment", "a note"));
    source.write(in_home(older_transfers, "a.cyberducktransfer"),
                 transfer(item("~/Documents/a.txt")));
    const auto adapter = source.adapter({alice});
    adapter->macos_set_extended_attributes_list({QStringLiteral("kMDItemFinderComment"),
                                                 QStringLiteral("kMDItemFSSize"),
                                                 QStringLiteral("kMDItemFSName")});
    adapter->xcode_extract_transfers();
    const QList<QVariantMap> rows = source.rows(QStringLiteral("transfers"));
    ASSERT_EQ(rows.size(), 1);
    const struct
    {
        const char *column;
        QVariant expected;
    } columns[] = {
        {"wherefrom", QStringLiteral("https://example.org/a.zip;https://example.org/")},
        {"fs_name", QStringLiteral("a.txt")},
        {"fs_content_change_date", QFileInfo(copy).lastModified().toSecsSinceEpoch()},
        {"fs_node_count", QVariant()},
        {"extended_attributes_value_for_search", QStringLiteral("a note;++::++;5")},
        {"extended_attributes_key_value",
         QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                        "<Extended_Attributes_XML_Header>\n"
                        "    <Extended_Attributes_Artifact_Source_Header>\n"
                        "        <File_Path>/Users/alice/Documents/a.txt</File_Path>\n"
                        "        <kMDItemFinderComment>a note</kMDItemFinderComment>\n"
                        "        <kMDItemFSSize>5</kMDItemFSSize>\n"
                        "    </Extended_Attributes_Artifact_Source_Header>\n"
                        "</Extended_Attributes_XML_Header>\n")},
    };
    for (const auto &row : columns)
        EXPECT_EQ(rows.constFirst().value(QLatin1String(row.column)), row.expected) << row.column;
}

TEST_F(extraction, cancelling_keeps_what_was_written)
{
    for (int i = 0; i < 5; ++i) {
        source.write(in_home(older_bookmarks, "") + QStringLiteral("%1.duck").arg(i),
                     xml_dictionary({}));
        source.write(in_home(older_history, "") + QStringLiteral("%1.duck").arg(i),
                     xml_dictionary({}));
    }
    source.write(in_home(older_transfers, "a.cyberducktransfer"),
                 transfer(item("~/a") + item("~/b") + item("~/c")));
    const struct
    {
        const char *table;
        extractor tested;
    } rows[] = {{"bookmarks", &cyberduck_macos::xcode_extract_bookmarks},
                {"history", &cyberduck_macos::xcode_extract_history},
                {"transfers", &cyberduck_macos::xcode_extract_transfers}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.table);
        const auto adapter = source.adapter({alice});
        adapter->set_signal_interval_ms(-1); // at every row
        QObject::connect(adapter.get(), &cyberduck_macos::signal_extracted_records_of_plugin_macos,
                         [&adapter](qint64 records) {
                             if (records == 2)
                                 adapter->macos_cancel_extraction();
                         });
        log.take_messages();
        (adapter.get()->*row.tested)();
        EXPECT_EQ(log.take_messages().size(), 1); // no closing line
        EXPECT_EQ(source.rows(QLatin1String(row.table)).size(), 2);
    }
}

TEST_F(extraction, cancelling_between_two_preferences_files_stops_the_driver)
{
    for (const char *user : {"Users/alice", "Users/bob"})
        source.write(QLatin1String(user) + QLatin1String(preferences_path),
                     xml_dictionary(text_entry("s3.storage.class", "STANDARD")));
    const auto adapter = source.adapter({alice, QStringLiteral("bob")});
    adapter->macos_set_essential_for_haldo_bench_extraction({QStringLiteral("preferences")});
    int tabs = 0;
    QObject::connect(adapter.get(), &cyberduck_macos::signal_total_tabs_processed_macos,
                     [&tabs] { ++tabs; });
    QObject::connect(adapter.get(), &cyberduck_macos::signal_extracted_records_of_plugin_macos,
                     [&adapter] { adapter->macos_cancel_extraction(); });
    log.take_messages();
    adapter->macos_extract_artifacts();
    EXPECT_EQ(source.rows(QStringLiteral("preferences")).size(), 1);
    EXPECT_EQ(tabs, 0);
    EXPECT_FALSE(log.take_messages().contains(QStringLiteral("[extract_plugin_artifacts] ends")));
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
