// What a forged file can cost at most, measured on a whole run of the program in a process of its
// own. Beside each stands a good list, which has to be read all the same.
#include "support/binary_list_builder.h"
#include "support/folder_walk.h"
#include "support/log_capture.h"
#include "support/printing.h"
#include "support/source_builder.h"

#include <QElapsedTimer>
#include <QRandomGenerator>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int mebibyte = 1024 * 1024;
constexpr int many = 1'000'000;

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

QByteArray random_bytes(int count)
{
    QByteArray bytes(count, Qt::Uninitialized);
    QRandomGenerator(1).fillRange(reinterpret_cast<quint32 *>(bytes.data()), count / 4);
    return bytes;
}

QByteArray deep_xml()
{
    return xml_dictionary("<key>Items</key>" + QByteArray("<array>").repeated(many) +
                          QByteArray("</array>").repeated(many));
}

// Each array holds the next one. Made by hand: a builder would keep the memory that is measured.
QByteArray deep_binary()
{
    const auto number = [](int value) { return binary_list_builder::number(quint64(value), 4); };
    constexpr int object_bytes = 5;
    QByteArray list("bplist00");
    list.reserve(16 * mebibyte);
    list += '\xd1' + number(many) + number(1); // the first, a dictionary: 9 bytes
    QByteArray table = number(8);
    table.reserve(4 * mebibyte);
    for (int object = 1; object < many; ++object) {
        table += number(list.size());
        list += '\xa1' + number(object + 1);
    }
    table += number(list.size());
    list += "\x55Items";
    const int table_offset = list.size();
    list += table + QByteArray(6, '\0') + QByteArray(2, '\4');
    EXPECT_EQ(table_offset, 8 + 9 + (many - 1) * object_bytes + 6);
    return list + binary_list_builder::number(many + 1, 8) + QByteArray(8, '\0') +
           binary_list_builder::number(quint64(table_offset), 8);
}

QByteArray claiming_objects()
{
    binary_list_builder builder;
    builder.forged_object_count = quint64(1) << 60;
    return builder.list(quint64(builder.dictionary({})));
}

// Values of 2^60 bytes or entries, by their own word.
QByteArray claiming_values()
{
    binary_list_builder builder;
    constexpr quint64 claimed = quint64(1) << 60;
    std::vector<std::pair<int, int>> entries;
    for (const auto &[key, type] : {std::pair("Nickname", 0x5), std::pair("Hostname", 0x6),
                                    std::pair("Host", 0xd), std::pair("Items", 0xa)})
        entries.emplace_back(builder.text(key),
                             builder.raw(binary_list_builder::head(type, claimed)));
    return builder.list(quint64(builder.dictionary(entries)));
}

QByteArray long_text()
{
    return xml_dictionary("<key>Nickname</key><string>" + QByteArray(31 * mebibyte, 'x') +
                          "</string>");
}

QByteArray queue_of_path(const QByteArray &path)
{
    return xml_dictionary("<key>Host</key><dict/><key>Items</key><array><dict><key>Local "
                          "Dictionary</key><dict><key>Path</key><string>" +
                          path + "</string></dict></dict></array>");
}

QByteArray long_path()
{
    return queue_of_path("~" + QByteArray("/Documents/..").repeated(2 * mebibyte));
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
        std::printf("%s:\n", file.name);
        check(source, file.is_list ? 2 : 1);
    }

    void check(const source_builder &source, int expected_bookmarks) const
    {
        source.write(QStringLiteral("Users/alice") + QLatin1String(older_bookmarks) + "z.duck",
                     xml_dictionary({}));
        const run_cost cost = extract(source);
        EXPECT_EQ(cost.status, 0);
        EXPECT_LT(cost.cpu_seconds, most_seconds);
        EXPECT_LT(cost.peak_kib - usual_.peak_kib, most_growth_kib);
        EXPECT_EQ(source.rows(QStringLiteral("bookmarks")).size(), expected_bookmarks);
        std::printf("  %.2f s, %lld KiB more\n", cost.cpu_seconds,
                    static_cast<long long>(cost.peak_kib - usual_.peak_kib));
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

TEST_F(limits, what_a_walk_leaves_out_is_told)
{
    const source_builder source;
    const QString folder = source.make_folder(QStringLiteral("walked"));
    for (int i = 0; i < 10; ++i)
        source.make_folder(QStringLiteral("walked/%1/inside").arg(i));
    const auto walk_all = [&folder](const support::walk_limits &allowed, QStringList *failed) {
        support::folder_walk walk(folder, folder, allowed);
        int entries = 0;
        while (walk.next())
            ++entries;
        *failed = walk.take_failed();
        return entries;
    };
    QStringList failed;
    EXPECT_EQ(walk_all({12, 10}, &failed), 20); // "." and ".." count as well
    EXPECT_TRUE(failed.isEmpty());
    EXPECT_LT(walk_all({11, 10}, &failed), 20);
    EXPECT_EQ(failed, QStringList(folder + '/'));
    EXPECT_EQ(walk_all({12, 9}, &failed), 19);
    EXPECT_EQ(failed, QStringList(folder + '/'));
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
