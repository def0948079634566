#include "evidence/files/evidence_file.h"

#include "samples/forged_source.h"
#include "tests/fixtures/printing.h"

#include <gtest/gtest.h>

namespace {

class evidence_file_test : public ::testing::Test
{
protected:
    forged_source files;
    evidence::evidence_file file;
    QByteArray bytes;
};

TEST_F(evidence_file_test, reads_all_up_to_the_limit)
{
    const QString path = files.write(QStringLiteral("a"), "twelve bytes");
    ASSERT_TRUE(file.open(path));
    EXPECT_TRUE(file.read_all(&bytes, 12));
    EXPECT_EQ(bytes, "twelve bytes");
    EXPECT_FALSE(file.read_all(&bytes, 11));
    EXPECT_TRUE(bytes.isEmpty());
}

TEST_F(evidence_file_test, stops_at_the_end_and_refuses_bad_ranges)
{
    ASSERT_TRUE(file.open(files.write(QStringLiteral("a"), "abcdef")));
    char buffer[8] = {};
    EXPECT_EQ(file.read_at(4, buffer, 8), 2);
    EXPECT_STREQ(buffer, "ef");
    EXPECT_EQ(file.read_at(100, buffer, 1), 0);
    EXPECT_EQ(file.read_at(-1, buffer, 1), -1);
}

TEST_F(evidence_file_test, opens_regular_files_only)
{
    files.fifo(QStringLiteral("fifo"));
    files.link(QStringLiteral("link"), files.write(QStringLiteral("a"), "x"));
    for (const char *name : {"fifo", "link", "missing", "."})
        EXPECT_FALSE(file.open(files.root() + name)) << name;
    EXPECT_FALSE(file.open(QStringLiteral("/dev/null")));
}

} // namespace
