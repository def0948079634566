#include "metadata/spotlight_volume_index.h"
#include "platform/spotlight_item.h"

#include "evidence/files/file_names.h"
#include "samples/forged_source.h"
#include "samples/spotlight_store_writer.h"
#include "tests/fixtures/child_process.h"
#include "tests/fixtures/held_place.h"
#include "tests/fixtures/printing.h"
#include "tests/fixtures/spotlight_shown.h"

#include <QDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

using namespace samples;
using evidence::file_identity;
using metadata::spotlight_volume_index;

constexpr char own_store[] = ".Spotlight-V100/Store-V2/A";

// Numbers as a file system would give them.
class given_identities final : public evidence::file_identity_source
{
public:
    std::optional<file_identity> identify(const QString &, const QString &) override { return now; }
    std::optional<file_identity> now;
};

class spotlight_volume_index_test : public ::testing::Test
{
protected:
    void SetUp() override
    {
        root = disk.root() + "src";
        identities = new given_identities;
        index = std::make_unique<spotlight_volume_index>(
            root + QLatin1Char('/'), std::unique_ptr<evidence::file_identity_source>(identities));
    }

    void write(const QString &name, const QByteArray &bytes) { disk.write("src/" + name, bytes); }

    // A store that knows Users/alice/a.txt (id 22 in folder 21) and says `comment` of it.
    void put_store(const char *folder, const char *comment, const char *file = "store.db",
                   bool swapped = false)
    {
        store_writer writer;
        writer.swap_ids(swapped).tables_beside(true);
        const quint32 attribute = writer.attribute("kMDItemComment", 11, 0);
        writer.root().file(20, 2, "Users").file(21, 20, "alice");
        writer.add(record_writer(22, 21)
                       .add(store_writer::file_name, prefixed("a.txt"))
                       .add(attribute, prefixed(comment)));
        writer.add(record_writer(23, 999) // its folder is excluded from the index
                       .add(store_writer::file_name, prefixed("lost.txt"))
                       .add(attribute, prefixed(comment)));
        const auto files = writer.folder(file);
        for (auto own = files.begin(); own != files.end(); ++own)
            write(QLatin1String(folder) + QLatin1Char('/') + own.key(), own.value());
    }

    QString comment(const QString &below_root)
    {
        return shown(
            index->value(root + QLatin1Char('/') + below_root, QStringLiteral("kMDItemComment")));
    }

    const QString a_txt = QStringLiteral("Users/alice/a.txt");
    forged_source disk;
    QString root;
    given_identities *identities = nullptr; // the index owns it
    std::unique_ptr<spotlight_volume_index> index;
};

TEST_F(spotlight_volume_index_test, looks_in_the_places_of_a_volume_and_nowhere_else)
{
    const struct
    {
        const char *folder;
        const char *file;
        bool swapped;
        const char *asked;
        const char *expected;
    } rows[] = {
        {own_store, "store.db", false, "Users/alice/a.txt", "'x'"},
        {own_store, ".store.db", false, "Users/alice/a.txt", "'x'"},
        {"System/Volumes/Data/.Spotlight-V100/Store-V2/A", "store.db", false, "Users/alice/a.txt",
         "'x'"},
        {"System/Volumes/Data/.Spotlight-V100/Store-V2/A", "store.db", false,
         "System/Volumes/Data/Users/alice/a.txt", "'x'"},
        {"private/var/db/Spotlight-V100/BootVolume/Store-V2/A", "store.db", true,
         "Users/alice/a.txt", "'x'"},
        {"Volumes/usb/.Spotlight-V100/Store-V2/A", "store.db", false,
         "Volumes/usb/Users/alice/a.txt", "'x'"},
        {"Volumes/usb/.Spotlight-V100/Store-V2/A", "store.db", false, "Users/alice/a.txt", "none"},
        {own_store, "store.db", false, "a.txt", "none"},
        {own_store, "other.db", false, "Users/alice/a.txt", "none"},
        {".Spotlight-V100", "store.db", false, "Users/alice/a.txt", "none"},
        {"Library/Metadata/CoreSpotlight/index.spotlightV3", "store.db", false, "Users/alice/a.txt",
         "none"},
        {"Library/Caches/com.apple.helpd/index.spotlightV3", "store.db", false, "Users/alice/a.txt",
         "none"},
    };
    for (const auto &row : rows) {
        QDir(root).removeRecursively();
        put_store(row.folder, "x", row.file, row.swapped);
        index = std::make_unique<spotlight_volume_index>(root);
        EXPECT_EQ(comment(QString::fromLatin1(row.asked)), QLatin1String(row.expected))
            << row.folder << " " << row.file << " " << row.asked;
    }
}

TEST_F(spotlight_volume_index_test, asks_the_stores_that_the_volume_lists_first)
{
    const auto entry = [](const char *uuid, const char *path, const char *created) {
        return QByteArray("<key>") + uuid + "</key><dict><key>PartialPath</key><string>" + path +
               "</string><key>CreationDate</key><date>" + created + "</date></dict>";
    };
    const auto list = [](const QByteArray &entries) {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict>"
               "<key>Stores</key><dict>" +
               entries + "</dict></dict></plist>";
    };
    const struct
    {
        const char *name;
        QByteArray configuration;
        const char *expected;
    } rows[] = {
        {"no list", "", "'A'"},
        {"one listed", list(entry("C", "/", "2020-01-01T00:00:00Z")), "'C'"},
        {"whole volume first",
         list(entry("A", "/Users", "2022-01-01T00:00:00Z") +
              entry("C", "/", "2020-01-01T00:00:00Z")),
         "'C'"},
        {"newest first",
         list(entry("A", "/", "2019-01-01T00:00:00Z") + entry("B", "/", "2021-01-01T00:00:00Z") +
              entry("C", "/", "2020-01-01T00:00:00Z")),
         "'B'"},
        {"listed one is gone", list(entry("D", "/", "2020-01-01T00:00:00Z")), "'A'"},
        {"damaged list", "<plist><dict>", "'A'"},
    };
    for (const char *uuid : {"A", "B", "C"})
        put_store((QByteArray(".Spotlight-V100/Store-V2/") + uuid).constData(), uuid);
    for (const auto &row : rows) {
        write(QStringLiteral(".Spotlight-V100/VolumeConfiguration.plist"), row.configuration);
        index = std::make_unique<spotlight_volume_index>(root);
        EXPECT_EQ(comment(a_txt), QLatin1String(row.expected)) << row.name;
    }
}

TEST_F(spotlight_volume_index_test, goes_on_to_the_next_store_when_one_has_no_record)
{
    store_writer without;
    write(QStringLiteral(".Spotlight-V100/Store-V2/A/store.db"), without.root().store());
    write(QStringLiteral(".Spotlight-V100/Store-V2/B/store.db"), "7tsd of an old system");
    put_store(".Spotlight-V100/Store-V2/C", "x");
    EXPECT_EQ(comment(a_txt), QStringLiteral("'x'"));
    const QStringList notes = {
        QStringLiteral("/.Spotlight-V100/Store-V2/A: Spotlight index with 1 records"),
        QStringLiteral("/.Spotlight-V100/Store-V2/B/store.db: old version of the index, not read"),
        QStringLiteral("/.Spotlight-V100/Store-V2/C: Spotlight index with 5 records")};
    EXPECT_EQ(index->take_notes(), notes);
    comment(QStringLiteral("Users/alice/b.txt"));
    EXPECT_EQ(index->take_notes(), QStringList());
}

TEST_F(spotlight_volume_index_test, tells_of_an_index_that_may_not_be_read)
{
    const QString refused = QStringLiteral(": not readable, no Spotlight index is taken from "
                                           "there: Permission denied");
    const std::pair<const char *, QString> rows[] = {
        {".Spotlight-V100", QStringLiteral("/.Spotlight-V100/") + refused},
        {".Spotlight-V100/Store-V2", QStringLiteral("/.Spotlight-V100/Store-V2/") + refused},
        {own_store, QStringLiteral("/.Spotlight-V100/Store-V2/A/") + refused},
        {".Spotlight-V100/Store-V2/A/store.db",
         QStringLiteral("/.Spotlight-V100/Store-V2/A/store.db and .store.db: Spotlight index not "
                        "readable: Permission denied")},
    };
    put_store(own_store, "x");
    put_store(own_store, "x", ".store.db");
    run_unprivileged(disk.outside(QStringLiteral(".")), [&] {
        const auto set_mode = [&](const QString &path, mode_t mode) {
            return ::chmod(evidence::encoded_name(root + QLatin1Char('/') + path).constData(),
                           mode);
        };
        const QString hidden = QLatin1String(own_store) + QStringLiteral("/.store.db");
        ASSERT_EQ(set_mode(hidden, 0000), 0);
        for (const auto &[path, note] : rows) {
            ASSERT_EQ(set_mode(QLatin1String(path), 0000), 0);
            index = std::make_unique<spotlight_volume_index>(root);
            EXPECT_EQ(comment(a_txt), QStringLiteral("none")) << path;
            EXPECT_EQ(index->take_notes(), QStringList(note)) << path;
            ASSERT_EQ(set_mode(QLatin1String(path), 0700), 0);
        }
    });
}

TEST_F(spotlight_volume_index_test, matches_by_number_only_with_name_and_folder)
{
    put_store(own_store, "x");
    const struct
    {
        const char *name;
        const char *path;
        std::optional<file_identity> identity;
        const char *expected;
    } rows[] = {
        {"all agree", "Users/alice/Library/lost.txt", file_identity{23, 999}, "'x'"},
        {"case differs", "Users/alice/Library/LOST.txt", file_identity{23, 999}, "'x'"},
        {"no numbers of the volume", "Users/alice/Library/lost.txt", std::nullopt, "none"},
        {"another folder", "Users/alice/Library/lost.txt", file_identity{23, 998}, "none"},
        {"another name", "Users/alice/Library/b.txt", file_identity{23, 999}, "none"},
        {"another file", "Users/alice/Library/lost.txt", file_identity{24, 999}, "none"},
        {"folder's number is not the root's", "lost.txt", file_identity{23, 999}, "none"},
        {"root shown under another number", "Users", file_identity{20, 1}, "none"}, // no comment
        {"path first", "Users/alice/a.txt", file_identity{23, 999}, "'x'"},
    };
    for (const auto &row : rows) {
        identities->now = row.identity;
        EXPECT_NE(index->attributes(root), nullptr); // forgets the file asked for before
        EXPECT_EQ(comment(QString::fromLatin1(row.path)), QLatin1String(row.expected)) << row.name;
    }
    identities->now = file_identity{20, 1};
    EXPECT_NE(index->attributes(root + QStringLiteral("/Users")), nullptr);
}

TEST_F(spotlight_volume_index_test, reads_a_store_once_and_not_before_it_is_asked)
{
    put_store(own_store, "x"); // after the index was made
    EXPECT_EQ(comment(a_txt), QStringLiteral("'x'"));
    ASSERT_TRUE(QDir(root + QStringLiteral("/.Spotlight-V100")).removeRecursively());
    EXPECT_EQ(comment(QStringLiteral("users/alice/A.TXT")), QStringLiteral("'x'"));
}

TEST_F(spotlight_volume_index_test, gives_no_answers_after_a_stop)
{
    put_store(own_store, "x");
    const std::atomic<bool> cancelled{true};
    index = std::make_unique<spotlight_volume_index>(root, nullptr, run::cancellation(cancelled));
    EXPECT_EQ(comment(a_txt), QStringLiteral("none"));
}

TEST_F(spotlight_volume_index_test, stays_inside_the_source)
{
    const QString above = root;
    put_store(own_store, "above");
    root += QStringLiteral("/Users");
    index = std::make_unique<spotlight_volume_index>(root);
    EXPECT_EQ(comment(QStringLiteral("alice/a.txt")), QStringLiteral("none"));
    EXPECT_EQ(comment(QStringLiteral("../Users/alice/a.txt")), QStringLiteral("none"));
    // A link on the way to the store would lead out.
    disk.link(QStringLiteral("src/Users/.Spotlight-V100"), above + "/.Spotlight-V100");
    index = std::make_unique<spotlight_volume_index>(root);
    EXPECT_EQ(comment(a_txt), QStringLiteral("none"));
}

TEST_F(spotlight_volume_index_test, comes_first_and_is_filled_up_by_other_sources)
{
    put_store(own_store, "x");
    write(QStringLiteral("Users/alice/A.TXT"), "12345");
    const auto catalog = platform::make_spotlight_catalog(root + QLatin1Char('/'));
    EXPECT_EQ(catalog->take_notes(), QStringList());
    const auto item = catalog->item(held_place(root + QStringLiteral("/Users/alice/A.TXT")));
    ASSERT_NE(item, nullptr);
    const struct
    {
        const char *name;
        const char *part;
    } rows[] = {{"kMDItemComment", "\"x\""},
                {"kMDItemFSName", "\"a.txt\""}, // as in the index
                {"kMDItemFSSize", "+5,"}};      // not in the index
    for (const auto &row : rows) {
        const auto found = item->attribute(QString::fromLatin1(row.name));
        ASSERT_TRUE(found) << row.name;
        EXPECT_TRUE(found->text.contains(QLatin1String(row.part))) << qPrintable(found->text);
    }
    EXPECT_FALSE(item->attribute(QStringLiteral("kMDItemUsedDates")));
    EXPECT_TRUE(catalog->take_notes().contains(
        QStringLiteral("/.Spotlight-V100/Store-V2/A: Spotlight index with 5 records")));
}

} // namespace
