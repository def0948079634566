#include "platform/spotlight_item.h"

#include "support/apple_double_builder.h"
#include "support/printing.h"
#include "support/shown_attribute.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class spotlight_catalog_test : public ::testing::Test
{
protected:
    QString make_file(const QString &name, const QByteArray &content = {}) const
    {
        QString path = folder.filePath(name);
        EXPECT_TRUE(QDir().mkpath(path.left(path.lastIndexOf(QLatin1Char('/')))));
        QFile made(path);
        EXPECT_TRUE(made.open(QIODevice::WriteOnly));
        made.write(content);
        return path;
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
        const auto item = catalog->item(path);
        const auto found = item ? item->attribute(QLatin1String(name)) : std::nullopt;
        if (!found)
            return QStringLiteral("absent");
        const int end = found->text.indexOf(QLatin1String("]>{"));
        return end < 0 ? found->text : found->text.mid(end + 2);
    }
    QString comment(const QString &path) const { return shown(path, "kMDItemFinderComment"); }

    QTemporaryDir folder;
    QString root = folder.path() + QStringLiteral("/root");
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
    EXPECT_FALSE(catalog->item(root + QStringLiteral("/missing")));
    EXPECT_FALSE(catalog->item(outside));
    EXPECT_FALSE(catalog->item(QString()));
    EXPECT_FALSE(catalog->item(root + QStringLiteral("/file") + QChar::Null));
    EXPECT_TRUE(catalog->item(root + QStringLiteral("/file")));
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
    ASSERT_TRUE(QDir().mkpath(root + QStringLiteral("/__MACOSX")));
    ASSERT_TRUE(QFile::link(folder.filePath(QStringLiteral("elsewhere")),
                            root + QStringLiteral("/__MACOSX/a")));
    ASSERT_TRUE(QFile::link(folder.filePath(QStringLiteral("elsewhere/._file")),
                            root + QStringLiteral("/._linked")));
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

} // namespace
