#include "support/evidence_file.h"

#include "support/printing.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

class evidence_file_test : public ::testing::Test
{
protected:
    [[nodiscard]] QString make_file(const QString &name, const QByteArray &content) const
    {
        QFile made(folder.filePath(name));
        EXPECT_TRUE(made.open(QIODevice::WriteOnly));
        made.write(content);
        return made.fileName();
    }

    QTemporaryDir folder;
    support::evidence_file file;
    QByteArray bytes;
};

TEST_F(evidence_file_test, reads_all_up_to_the_limit)
{
    const QString path = make_file(QStringLiteral("a"), "twelve bytes");
    ASSERT_TRUE(file.open(path));
    EXPECT_TRUE(file.read_all(&bytes, 12));
    EXPECT_EQ(bytes, "twelve bytes");
    EXPECT_FALSE(file.read_all(&bytes, 11));
    EXPECT_TRUE(bytes.isEmpty());
}

TEST_F(evidence_file_test, stops_at_the_end_and_refuses_bad_ranges)
{
    ASSERT_TRUE(file.open(make_file(QStringLiteral("a"), "abcdef")));
    char buffer[8] = {};
    EXPECT_EQ(file.read_at(4, buffer, 8), 2);
    EXPECT_STREQ(buffer, "ef");
    EXPECT_EQ(file.read_at(100, buffer, 1), 0);
    EXPECT_EQ(file.read_at(-1, buffer, 1), -1);
}

TEST_F(evidence_file_test, opens_regular_files_only)
{
    const QByteArray fifo = QFile::encodeName(folder.filePath(QStringLiteral("fifo")));
    ASSERT_EQ(::mkfifo(fifo.constData(), 0600), 0);
    const QString target = make_file(QStringLiteral("a"), "x");
    ASSERT_TRUE(QFile::link(target, folder.filePath(QStringLiteral("link"))));
    for (const char *name : {"fifo", "link", "missing", "."})
        EXPECT_FALSE(file.open(folder.filePath(QString::fromLatin1(name)))) << name;
    EXPECT_FALSE(file.open(QStringLiteral("/dev/null")));
}

} // namespace
