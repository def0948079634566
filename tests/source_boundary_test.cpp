#include "support/source_boundary.h"

#include "support/printing.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

using support::reach;

class source_boundary_test : public ::testing::Test
{
protected:
    void SetUp() override
    {
        root = outer.filePath(QStringLiteral("src/"));
        ASSERT_TRUE(QDir().mkpath(root + QStringLiteral("Users/alice/docs")));
        ASSERT_TRUE(QDir().mkpath(outer.filePath(QStringLiteral("private"))));
        touch(QStringLiteral("src/Users/alice/docs/a"));
        touch(QStringLiteral("private/secret"));
    }

    void touch(const QString &name)
    {
        QFile file(outer.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }

    // A link in alice's home.
    void link(const char *name, const QString &target)
    {
        const QByteArray path = QFile::encodeName(root + QStringLiteral("Users/alice/") + name);
        ASSERT_EQ(::symlink(QFile::encodeName(target).constData(), path.constData()), 0);
    }

    QTemporaryDir outer;
    QString root;
};

TEST_F(source_boundary_test, follows_links_as_the_examined_machine_would)
{
    link("relative", QStringLiteral("docs/a"));
    link("absolute", QStringLiteral("/Users/alice/docs"));
    link("seen_from_here", root + QStringLiteral("Users/alice/docs"));
    link("climbs", QStringLiteral("../../../private"));
    link("away", outer.filePath(QStringLiteral("private")));
    link("dangling", QStringLiteral("/Users/bob/gone"));
    link("loop", QStringLiteral("loop"));

    const QString docs = root + QStringLiteral("Users/alice/docs");
    const struct
    {
        const char *below_home;
        reach where;
        QString path;
    } rows[] = {
        {"docs/a", reach::inside, docs + "/a"},
        {"docs/./../docs//a", reach::inside, docs + "/a"},
        {"relative", reach::inside, docs + "/a"},
        {"absolute/a", reach::inside, docs + "/a"},
        {"seen_from_here/a", reach::inside, docs + "/a"},
        {"docs/a/below_a_file", reach::missing, {}},
        {"gone", reach::missing, {}},
        {"dangling", reach::missing, {}},
        {"loop", reach::missing, {}},
        {"climbs/secret", reach::outside, {}},
        {"away/secret", reach::outside, {}},
        {"../../../private/secret", reach::outside, {}},
        {"../../../src/Users/alice/docs/a", reach::outside, {}},
    };
    // What is remembered of the path before must not show.
    for (const auto &before : rows) {
        const support::source_boundary boundary(root);
        for (const auto &row : rows) {
            SCOPED_TRACE(std::string(row.below_home) + " after " + before.below_home);
            EXPECT_EQ(boundary.resolve(root + "Users/alice/" + before.below_home).where,
                      before.where);
            const auto found = boundary.resolve(root + "Users/alice/" + row.below_home);
            EXPECT_EQ(found.where, row.where);
            EXPECT_EQ(found.path, row.path);
        }
    }
}

// Otherwise one name could take minutes, and gigabytes.
TEST_F(source_boundary_test, misses_paths_that_no_system_opens)
{
    const support::source_boundary boundary(root);
    const QString home = root + QStringLiteral("Users/alice/");
    const QString there_and_back = QStringLiteral("docs/../");
    EXPECT_EQ(boundary.resolve(home + there_and_back.repeated(500) + "docs/a").where,
              reach::inside);
    EXPECT_EQ(boundary.resolve(home + there_and_back.repeated(600) + "docs/a").where,
              reach::missing);
    for (int i = 0; i < 30; ++i)
        link(QByteArray("l" + QByteArray::number(i)).constData(),
             there_and_back.repeated(500) + QStringLiteral("l%1").arg(i + 1));
    link("l30", QStringLiteral("docs/a"));
    EXPECT_EQ(boundary.resolve(home + "l28").where, reach::inside);
    EXPECT_EQ(boundary.resolve(home + "l0").where, reach::missing);
}

TEST_F(source_boundary_test, refuses_what_does_not_start_at_the_root)
{
    const support::source_boundary boundary(root);
    EXPECT_EQ(boundary.resolve(outer.filePath(QStringLiteral("private/secret"))).where,
              reach::outside);
    EXPECT_EQ(boundary.resolve(outer.filePath(QStringLiteral("srcery"))).where, reach::outside);
    EXPECT_EQ(boundary.resolve(QString()).where, reach::outside);
    EXPECT_EQ(boundary.resolve(outer.filePath(QStringLiteral("src"))).where, reach::inside);
}

} // namespace
