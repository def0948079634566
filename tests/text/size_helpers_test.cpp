#include "host_interface/library/plugin_static_function.h"

#include "samples/forged_source.h"
#include "tests/fixtures/printing.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>

namespace {

using library = plugin_static_function;

class size_helpers_test : public ::testing::Test
{
protected:
    void SetUp() override { library::set_essentials(); }
    void TearDown() override { library::set_cancel_extraction(false); }

    [[nodiscard]] QString at(const QString &name) const { return files.root() + name; }

    forged_source files;
};

TEST_F(size_helpers_test, readable_sizes)
{
    const char *rows[][2] = {{" 1023 ", "1023 B"},
                             {"1024", "1.00 KB"},
                             {"1152", "1.13 KB"}, // halves are rounded up
                             {"1048575", "1024.00 KB"},
                             {"1048576", "1.00 MB"},
                             {"5368709120", "5120.00 MB"},
                             {"9223372036854775807", "8796093022208.00 MB"},
                             {"9223372036854775808", "-9223372036854775808 B"},
                             {"18446744073709551616", "0 B"},
                             {"-5", "0 B"},
                             {"x", "0 B"},
                             {" ", ""}};
    for (const auto &row : rows)
        EXPECT_EQ(library::human_readable_size(row[0]), row[1]) << row[0];
}

TEST_F(size_helpers_test, suffixes)
{
    const char *rows[][2] = {{"a.tar.gz", "gz"},
                             {" /b.c/a.TXT ", "TXT"},
                             {".profile", ""},
                             {".profile.bak", "bak"},
                             {"a", ""},
                             {"/b.c/a", ""},
                             {"a.", ""},
                             {"..", ""},
                             {"/b/a.app/", "app"},
                             {"", ""},
                             {"/", ""}};
    for (const auto &row : rows)
        EXPECT_EQ(library::mining_suffix(row[0]), row[1]) << row[0];
}

TEST_F(size_helpers_test, folder_holds_its_regular_files_only)
{
    files.make_folder("a/.hidden/empty");
    files.make_folder("elsewhere");
    files.write_sparse("a/one", {}, 1);
    files.write_sparse("a/.two", {}, 20);
    files.write_sparse("a/.hidden/\"three\" é", {}, 300);
    files.write_sparse("elsewhere/b", {}, 4000);
    files.link("a/file link", at("elsewhere/b"));
    files.link("a/folder link", at("elsewhere"));
    files.link("a/loop", at("a"));
    files.fifo("a/fifo");

    EXPECT_EQ(library::mining_size(at("a")), "321");
    EXPECT_EQ(library::mining_size(at("a/.two")), "20");
    EXPECT_EQ(library::mining_size(at("a/.hidden/empty")), "0");
    EXPECT_EQ(library::mining_size(at("a/fifo")), "0");
    for (const char *name : {"a/missing", "a/file link", "a/folder link/", "a/one/x"})
        EXPECT_TRUE(library::mining_size(at(name)).isNull()) << name;
    EXPECT_TRUE(library::mining_size(QString()).isNull());
}

TEST_F(size_helpers_test, cancelled_walk_gives_the_folder_entry)
{
    files.write_sparse("a", {}, 123456789);
    library::set_cancel_extraction(true);
    struct stat status = {};
    ASSERT_EQ(::stat(QFile::encodeName(files.root()).constData(), &status), 0);
    EXPECT_EQ(library::mining_size(files.root()), QString::number(status.st_size));
    EXPECT_EQ(library::mining_size(at("a")), "123456789");
}

// The names of one path of the tree are longer together than the system takes, and there are more
// levels than descriptors.
TEST_F(size_helpers_test, deep_trees_take_few_descriptors)
{
    constexpr int depth = 200;
    const QString name(50, QLatin1Char('d'));
    QDir here(files.root());
    files.make_folder("top");
    files.write_sparse("top/bottom", {}, 7);
    for (int i = 0; i < depth; ++i) {
        files.make_folder("next/sibling");
        files.write_sparse("next/file", {}, 1);
        ASSERT_TRUE(here.rename("top", "next/" + name) && here.rename("next", "top"));
    }
    rlimit usual = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &usual), 0);
    const rlimit few = {64, usual.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    EXPECT_EQ(library::mining_size(at("top")), QString::number(depth + 7));
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &usual), 0);
    for (int i = 0; i < depth; ++i) { // too deep for the temporary folder to remove itself
        ASSERT_TRUE(here.rename("top/" + name, "rest") && QDir(at("top")).removeRecursively());
        ASSERT_TRUE(here.rename("rest", "top"));
    }
}

} // namespace
