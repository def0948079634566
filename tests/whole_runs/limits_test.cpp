// What a forged file can cost at most, measured on a whole run of the program in a process of its
// own. Beside each stands a good list, which has to be read all the same.
#include "samples/binary_list_builder.h"
#include "samples/costly_lists.h"
#include "samples/spotlight_store_writer.h"
#include "evidence/folders/folder_walk.h"
#include "tests/fixtures/log_capture.h"
#include "tests/fixtures/printing.h"
#include "tests/fixtures/source_builder.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// They slow everything down and keep freed memory.
constexpr double most_seconds = 20;
constexpr qint64 most_growth_kib = 64 * 1024 * 1024;
#else
constexpr double most_seconds = 1;
constexpr qint64 most_growth_kib = 64 * 1024;
#endif

struct run_cost
{
    int status = -1;
    double cpu_seconds = 0; // the machine may be busy with something else
    qint64 peak_kib = 0;
};

double seconds_of(const timeval &time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

run_cost extract(const source_builder &source)
{
    const QByteArray root = QFile::encodeName(source.root());
    const QByteArray result = QFile::encodeName(source.result_folder());
    const pid_t child = ::fork();
    if (child == 0) {
        const int nowhere = ::open("/dev/null", O_WRONLY);
        ::dup2(nowhere, STDOUT_FILENO);
        ::execl(PLUGIN_HOST, PLUGIN_HOST, "extract", "--progress", "never", root.constData(),
                result.constData(), static_cast<char *>(nullptr));
        ::_exit(127);
    }
    run_cost cost;
    rusage usage = {};
    ::wait4(child, &cost.status, 0, &usage);
    cost.cpu_seconds = seconds_of(usage.ru_utime) + seconds_of(usage.ru_stime);
    cost.peak_kib = usage.ru_maxrss / MEMORY_UNITS_PER_KIB;
    return cost;
}

struct forged_file
{
    const char *name;
    QByteArray (*make)();
    const char *place; // counts from the bookmarks' folder
    bool is_list;
};

class limits : public ::testing::Test
{
protected:
    static run_cost cost_without()
    {
        const source_builder plain;
        plain.write(QStringLiteral("Users/alice") + QLatin1String(older_bookmarks) + "z.duck",
                    xml_dictionary({}));
        return extract(plain);
    }

    void check(const forged_file &file) const
    {
        SCOPED_TRACE(file.name);
        const source_builder source;
        source.make_folder(QStringLiteral("Users/alice/Documents"));
        source.write(QStringLiteral("Users/alice") + QLatin1String(older_bookmarks) + file.place,
                     file.make());
        check(source, file.is_list ? 2 : 1);
    }

    void check(const source_builder &source, int expected_bookmarks) const
    {
        source.write(QStringLiteral("Users/alice") + QLatin1String(older_bookmarks) + "z.duck",
                     xml_dictionary({}));
        const run_cost cost = extract(source);
        EXPECT_TRUE(WIFEXITED(cost.status) && WEXITSTATUS(cost.status) <= 1) << cost.status;
        EXPECT_LT(cost.cpu_seconds, most_seconds);
        EXPECT_LT(cost.peak_kib - usual_.peak_kib, most_growth_kib);
        EXPECT_EQ(source.rows(QStringLiteral("bookmarks")).size(), expected_bookmarks);
    }

    const run_cost usual_ = cost_without();
};

TEST_F(limits, a_forged_list_costs_less_than_a_second_and_64_mebibytes)
{
    for (const forged_file &row : std::initializer_list<forged_file>{
             {"64 MiB of random bytes", [] { return random_bytes(64 * mebibyte); }, "a.duck",
              false},
             {"random bytes up to the limit", [] { return random_bytes(32 * mebibyte); }, "a.duck",
              false},
             {"XML, a million deep", deep_xml, "a.duck", false},
             {"XML, four million values", many_values, "a.duck", false},
             {"XML, three million keys", many_keys, "a.duck", false},
             {"XML, two million pieces of one text", many_pieces_of_text, "a.duck", false},
             {"XML in UTF-16", many_values_in_utf16, "a.duck", false},
             {"2^60 objects", claiming_objects, "a.duck", false},
         })
        check(row);
}

TEST_F(limits, only_what_is_asked_for_costs_anything)
{
    for (const forged_file &row : std::initializer_list<forged_file>{
             {"binary, a million deep", deep_binary, "a.duck", true},
             {"values of 2^60", claiming_values, "a.duck", true},
             {"a text of 31 MiB", long_text, "a.duck", true},
             {"a path of 24 MiB", long_path, "../Transfers/a.cyberducktransfer", false},
         })
        check(row);
}

TEST_F(limits, random_bytes_beside_a_local_copy_cost_no_more)
{
    const source_builder source;
    const struct
    {
        const char *path;
        const char *start;
    } files[] = {
        {"Users/alice/Library/Preferences/ch.sudo.cyberduck.plist", ""},
        {"Users/alice/Documents/a.jpg", "\xff\xd8\xff\xe1\xff\xff"},
        {"Users/alice/Documents/._a.jpg", ""},
        {".Spotlight-V100/Store-V2/A/store.db", "8tsd"},
        {".Spotlight-V100/VolumeConfiguration.plist", ""},
    };
    for (const auto &file : files)
        source.write(QLatin1String(file.path), file.start + random_bytes(64 * mebibyte));
    source.write(QStringLiteral("Users/alice") + QLatin1String(older_transfers) +
                     "a.cyberducktransfer",
                 queue_of_path("~/Documents/a.jpg"));
    check(source, 1);
    EXPECT_EQ(source.rows(QStringLiteral("transfers")).size(), 1);
}

// Each makes a record of the local copy "a.jpg" from one text, and many records of nothing.
struct forged_index
{
    const char *name;
    QByteArray text;
    int times;      // that the list names the text
    int attributes; // that name the list
    quint8 flags;
    int records;
};

TEST_F(limits, a_forged_index_costs_no_more)
{
    for (const forged_index &row : std::initializer_list<forged_index>{
             {"a text in a language, many times", QByteArray(60'000, 'x'), 65536, 40, 3, 0},
             {"an empty text, many times", "", 65536, 400, 2, 0},
             {"one huge text", QByteArray(4 * mebibyte, 'x'), 1, 1, 2, 0},
             {"packed records of nothing", "x", 1, 1, 2, 2'000'000},
         }) {
        SCOPED_TRACE(row.name);
        samples::store_writer writer;
        writer.tables_beside(true).page_packing(samples::packing::zlib);
        const auto text = qint32(writer.text(row.text));
        const std::vector<qint32> texts(size_t(row.times), text);
        const quint32 list = row.flags == 3 ? writer.localized(texts) : writer.list(texts);
        samples::record_writer copy(23, 22);
        copy.add(samples::store_writer::file_name, samples::prefixed("a.jpg"));
        for (int i = 0; i < row.attributes; ++i) {
            const QByteArray name = "kMDItemMany" + QByteArray::number(i);
            copy.add(writer.attribute(name.constData(), 15, row.flags), samples::variable(list));
        }
        writer.root().file(20, 2, "Users").file(21, 20, "alice").file(22, 21, "Documents");
        writer.add(copy);
        for (int i = 0; i < row.records; ++i)
            writer.add(samples::record_writer(quint64(100 + i), 22));
        const source_builder source;
        const auto files = writer.folder();
        for (const char *folder : {"A", "B", "C"}) {
            const QString place = QStringLiteral(".Spotlight-V100/Store-V2/") + folder + '/';
            for (auto file = files.begin(); file != files.end(); ++file)
                source.write(place + file.key(), file.value());
        }
        source.write(QStringLiteral("Users/alice/Documents/a.jpg"), "x");
        source.write(QStringLiteral("Users/alice") + QLatin1String(older_transfers) +
                         "a.cyberducktransfer",
                     queue_of_path("~/Documents/a.jpg"));
        check(source, 1);
        EXPECT_EQ(source.rows(QStringLiteral("transfers")).size(), 1);
    }
}

// Each of the two ways is named by every other item.
TEST_F(limits, deep_ways_are_walked_once)
{
    const source_builder source;
    QByteArray items;
    for (const char *name : {"a", "b"}) {
        const QByteArray way = name + QByteArray("/d").repeated(1950);
        source.make_folder("Users/alice/" + QString::fromLatin1(way));
        items += "<dict><key>Local Dictionary</key><dict><key>Path</key><string>~/" + way +
                 "/gone</string></dict></dict>";
    }
    source.write(QStringLiteral("Users/alice") + QLatin1String(older_transfers) +
                     "a.cyberducktransfer",
                 xml_dictionary("<key>Host</key><dict/><key>Items</key><array>" +
                                items.repeated(25) + "</array>"));
    check(source, 1);
    EXPECT_EQ(source.rows(QStringLiteral("transfers")).size(), 50);
}

TEST_F(limits, what_a_walk_leaves_out_is_told)
{
    const source_builder source;
    const QString folder = source.make_folder(QStringLiteral("walked"));
    for (int i = 0; i < 10; ++i)
        source.make_folder(QStringLiteral("walked/%1/inside").arg(i));
    const auto walk_all = [&folder](const evidence::walk_limits &allowed, QStringList *failed) {
        evidence::folder_walk walk(folder, folder, allowed);
        int entries = 0;
        while (walk.next())
            ++entries;
        *failed = walk.take_failed();
        return entries;
    };
    QStringList failed;
    EXPECT_EQ(walk_all({10, 10}, &failed), 20);
    EXPECT_TRUE(failed.isEmpty());
    EXPECT_LT(walk_all({9, 10}, &failed), 20);
    EXPECT_EQ(failed, QStringList(folder + '/'));
    EXPECT_EQ(walk_all({10, 9}, &failed), 19);
    EXPECT_EQ(failed, QStringList(folder + '/'));
    EXPECT_LT(walk_all({10, 10, 19}, &failed), 20); // "0/" to "9/" are 20 bytes
    EXPECT_TRUE(failed.contains(folder + '/'));
}

// Only the end of a text goes, and a line of the log tells of it.
TEST_F(limits, a_long_text_is_cut_and_told)
{
    const source_builder source;
    const QString path = source.write(
        QStringLiteral("Users/alice") + QLatin1String(older_bookmarks) + "a.duck", long_text());
    log_capture log;
    source.adapter({QStringLiteral("alice")})->xcode_extract_bookmarks();
    EXPECT_EQ(log.take_messages().filter(QStringLiteral("text too long")),
              QStringList(QStringLiteral(
                              "[xcode_extract_bookmarks] text too long, cut ------FAILED------") +
                          path));
    const QVariantMap row = source.rows(QStringLiteral("bookmarks")).value(0);
    EXPECT_EQ(row.value(QStringLiteral("nickname")).toString(),
              QString(mebibyte, QLatin1Char('x')));
}

// Each item names one dictionary of half a million entries, which few bytes can: its keys and
// values are the same object. Items beyond what one list may cost are no rows without values.
TEST_F(limits, a_list_that_costs_too_much_ends_with_a_whole_row_and_is_told)
{
    constexpr int shared_entries = 500'000;
    constexpr int items = 60;
    binary_list_builder builder(4, 1);
    const int letter = builder.text("x");
    std::vector<std::pair<int, int>> entries(shared_entries, {letter, letter});
    entries.emplace_back(builder.text("Remote"), builder.text("/kept"));
    const int large = builder.dictionary(entries);
    const int item = builder.dictionary({{builder.text("Remote"), large}});
    const int host = builder.dictionary({{builder.text("Hostname"), letter}});
    const int queue = builder.array(std::vector<int>(items, item));
    const int top =
        builder.dictionary({{builder.text("Host"), host}, {builder.text("Items"), queue}});
    const source_builder source;
    const QString path = source.write(QStringLiteral("Users/alice") +
                                          QLatin1String(older_transfers) + "a.cyberducktransfer",
                                      builder.list(quint64(top)));
    log_capture log;
    source.adapter({QStringLiteral("alice")})->xcode_extract_transfers();
    const QStringList told = log.take_messages().filter(QStringLiteral("left out"));
    EXPECT_EQ(told, QStringList({"[xcode_extract_transfers] items too large, rest left out "
                                 "------FAILED------" +
                                     path,
                                 "[xcode_extract_transfers] list too large, values left out "
                                 "------FAILED------" +
                                     path}));
    const QList<QVariantMap> rows = source.rows(QStringLiteral("transfers"));
    EXPECT_GT(rows.size(), 0);
    EXPECT_LT(rows.size(), items);
    for (const QVariantMap &row : rows)
        EXPECT_EQ(row.value(QStringLiteral("remote_path")).toString(), QStringLiteral("/kept"));
}

} // namespace
