#include "platform/portable/portable_catalog.h"

#include "samples/apple_double_builder.h"
#include "samples/forged_source.h"
#include "tests/fixtures/held_place.h"
#include "tests/fixtures/printing.h"
#include "tests/fixtures/shown_attribute.h"

#include <QFile>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <new>

namespace {

class spotlight_catalog_test : public ::testing::Test
{
protected:
    QString make_file(const QString &name, const QByteArray &content = {}) const
    {
        return files.write(name, content);
    }
    // A companion that tells a comment.
    static QByteArray companion(const QByteArray &comment)
    {
        apple_double_builder builder;
        builder.attributes = {{"com.apple.metadata:kMDItemFinderComment", comment}};
        return builder.bytes();
    }
    QString shown(const QString &path, const char *name) const
    {
        const auto item = catalog->item(held_place(path));
        const auto found = item ? item->attribute(QLatin1String(name)) : std::nullopt;
        if (!found)
            return QStringLiteral("absent");
        const int end = found->text.indexOf(QLatin1String("]>{"));
        return end < 0 ? found->text : found->text.mid(end + 2);
    }
    QString comment(const QString &path) const { return shown(path, "kMDItemFinderComment"); }

    forged_source files;
    QString root = files.root() + "root";
    std::unique_ptr<platform::spotlight_catalog> catalog = platform::make_spotlight_catalog(root);
};

TEST_F(spotlight_catalog_test, tells_what_the_file_system_says)
{
    const QString file = make_file(QStringLiteral("root/a:b.txt"), "12345");
    const struct timespec times[] = {{0, UTIME_NOW}, {1589021112, 500000000}};
    ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(file).constData(), times, 0), 0);
    EXPECT_EQ(shown(file, "kMDItemFSName"), QStringLiteral("{contents = \"a/b.txt\"}"));
    EXPECT_EQ(shown(file, "kMDItemFSSize"),
              QStringLiteral("{value = +5, type = kCFNumberSInt64Type}"));
    for (const char *name : {"kMDItemFSContentChangeDate", "kMDItemContentModificationDate"})
        EXPECT_EQ(shown(file, name), QStringLiteral("2020-05-09 10:45:12 +0000")) << name;
    EXPECT_EQ(shown(file, "kMDItemFSOwnerUserID"),
              QStringLiteral("{value = +%1, type = kCFNumberSInt64Type}").arg(::getuid()));
    EXPECT_EQ(shown(file, "kMDItemFSNodeCount"), QStringLiteral("absent"));
    EXPECT_EQ(shown(file, "kMDItemKind"), QStringLiteral("absent"));
    EXPECT_EQ(shown(root, "kMDItemFSNodeCount"),
              QStringLiteral("{value = +1, type = kCFNumberSInt64Type}"));
    EXPECT_EQ(shown(root, "kMDItemFSSize"), QStringLiteral("absent"));
    EXPECT_EQ(catalog->take_notes().size(), 1);
}

TEST_F(spotlight_catalog_test, has_no_item_for_what_is_not_there)
{
    const QString outside = make_file(QStringLiteral("outside"));
    make_file(QStringLiteral("root/file"));
    EXPECT_FALSE(catalog->item(held_place(root + QStringLiteral("/missing"))));
    EXPECT_FALSE(catalog->item(held_place(outside)));
    EXPECT_FALSE(catalog->item(held_place(QString())));
    EXPECT_FALSE(catalog->item(held_place(root + QStringLiteral("/file") + QChar::Null)));
    EXPECT_TRUE(catalog->item(held_place(root + QStringLiteral("/file"))));
}

TEST_F(spotlight_catalog_test, finds_companions_in_both_places)
{
    const QString beside = make_file(QStringLiteral("root/b/one"));
    make_file(QStringLiteral("root/b/._one"), companion("beside"));
    const QString unpacked = make_file(QStringLiteral("root/b/c/d/two"));
    make_file(QStringLiteral("root/b/__MACOSX/c/d/._two"), companion("archive"));
    make_file(QStringLiteral("root/__MACOSX/b/c/d/._two"), companion("outer archive"));
    make_file(QStringLiteral("root/__MACOSX/._b"), companion("folder"));
    EXPECT_EQ(comment(beside), QStringLiteral("{contents = \"beside\"}"));
    EXPECT_EQ(comment(unpacked), QStringLiteral("{contents = \"archive\"}"));
    EXPECT_EQ(comment(root + QStringLiteral("/b")), QStringLiteral("{contents = \"folder\"}"));
    EXPECT_EQ(catalog->take_notes().size(), 2);
    EXPECT_TRUE(catalog->take_notes().isEmpty());
}

// Otherwise few bytes would fill the rows of any number of files.
TEST_F(spotlight_catalog_test, a_companion_of_many_names_is_read_for_some)
{
    const QString first = make_file(QStringLiteral("root/._0"), companion("shared"));
    int answers = 0;
    for (int i = 0; i < 40; ++i) {
        const QString name = QStringLiteral("root/") + QString::number(i);
        if (i > 0)
            files.hard_link(QStringLiteral("root/._") + QString::number(i),
                            QStringLiteral("root/._0"));
        answers += comment(make_file(name)) == QLatin1String("absent") ? 0 : 1;
    }
    EXPECT_GT(answers, 0);
    EXPECT_LE(answers, 17); // the first was met before it had other names
}

TEST_F(spotlight_catalog_test, a_companion_without_the_answer_leaves_it_to_the_next)
{
    const QString file = make_file(QStringLiteral("root/a"));
    make_file(QStringLiteral("root/._a"), "a user's own file, larger than eighty-two bytes, "
                                          "that only happens to have such a name");
    make_file(QStringLiteral("root/__MACOSX/._a"), companion("archive"));
    EXPECT_EQ(comment(file), QStringLiteral("{contents = \"archive\"}"));
    EXPECT_NE(shown(file, "kMDItemFSSize"), QStringLiteral("absent"));
}

TEST_F(spotlight_catalog_test, finds_companions_of_other_unicode_forms)
{
    const QString composed = make_file(QStringLiteral("root/caf\u00e9/\u00e9"));
    make_file(QStringLiteral("root/__MACOSX/cafe\u0301/._e\u0301"), companion("composed file"));
    const QString decomposed = make_file(QStringLiteral("root/o\u0308"));
    make_file(QStringLiteral("root/._\u00f6"), companion("decomposed file"));
    EXPECT_EQ(comment(composed), QStringLiteral("{contents = \"composed file\"}"));
    EXPECT_EQ(comment(decomposed), QStringLiteral("{contents = \"decomposed file\"}"));
}

TEST_F(spotlight_catalog_test, never_reads_companions_outside_of_the_source)
{
    const QString file = make_file(QStringLiteral("root/a/file"));
    const QString linked = make_file(QStringLiteral("root/linked"));
    make_file(QStringLiteral("__MACOSX/root/a/._file"), companion("above the root"));
    make_file(QStringLiteral("elsewhere/._file"), companion("through a folder's link"));
    files.link(QStringLiteral("root/__MACOSX/a"), files.root() + "elsewhere");
    files.link(QStringLiteral("root/._linked"), files.root() + "elsewhere/._file");
    EXPECT_EQ(comment(file), QStringLiteral("absent"));
    EXPECT_EQ(comment(linked), QStringLiteral("absent"));
}

TEST_F(spotlight_catalog_test, attributes_of_the_file_come_before_its_companion)
{
    const QString file = make_file(QStringLiteral("root/a"));
    make_file(QStringLiteral("root/._a"), companion("companion"));
    EXPECT_EQ(comment(file), QStringLiteral("{contents = \"companion\"}"));
    if (!set_attribute(QFile::encodeName(file), "user.com.apple.metadata:kMDItemFinderComment",
                       "attribute"))
        GTEST_SKIP() << "needs a temporary folder whose file system takes user attributes";
    ASSERT_TRUE(
        set_attribute(QFile::encodeName(file), "user.com.apple.metadata:kMDItemFSName", "told"));
    catalog = platform::make_spotlight_catalog(root);
    EXPECT_EQ(comment(file), QStringLiteral("{contents = \"attribute\"}"));
    EXPECT_EQ(shown(file, "kMDItemFSName"), QStringLiteral("{contents = \"told\"}"));
}

// What a reader throws costs one file's answer. `from_the_start`: or the whole file.
class throwing_source final : public metadata::metadata_source
{
public:
    explicit throwing_source(bool from_the_start)
        : from_the_start_(from_the_start)
    {
    }
    std::unique_ptr<metadata::file_metadata> open(const metadata::source_file &) override
    {
        class file final : public metadata::file_metadata
        {
            std::optional<formats::spotlight_value> attribute(const QString &) override
            {
                throw std::bad_alloc();
            }
        };
        if (from_the_start_)
            throw std::bad_alloc();
        return std::make_unique<file>();
    }
    QStringList take_notes() override { return {}; }

private:
    bool from_the_start_;
};

TEST(portable_catalog, no_exception_of_a_reader_leaves_the_platform)
{
    const forged_source files;
    const evidence::resolved_path place = held_place(files.write(QStringLiteral("a"), "x"));
    for (const bool from_the_start : {false, true}) {
        std::vector<std::unique_ptr<metadata::metadata_source>> sources;
        sources.push_back(std::make_unique<throwing_source>(from_the_start));
        const auto catalog = platform::make_portable_catalog(files.root(), std::move(sources));
        const auto item = catalog->item(place);
        ASSERT_EQ(item == nullptr, from_the_start);
        EXPECT_FALSE(item && item->attribute(QStringLiteral("kMDItemKind")));
        EXPECT_EQ(catalog->take_notes().size(), 1);
    }
}

} // namespace
