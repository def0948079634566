#include "evidence/access/source_open.h"
#include "evidence/files/evidence_file.h"
#include "evidence/files/file_names.h"
#include "evidence/folders/folder_listing.h"
#include "evidence/folders/similar_names.h"
#include "evidence/folders/source_boundary.h"

#include "samples/forged_source.h"
#include "tests/fixtures/printing.h"

#include <gtest/gtest.h>

#include <fcntl.h>

namespace {

using evidence::reach;

class source_boundary_test : public ::testing::Test
{
protected:
    source_boundary_test()
    {
        files.write(QStringLiteral("Users/alice/docs/a"), {});
        files.write(QStringLiteral("../private/secret"), {});
    }

    // A link in alice's home.
    void link(const char *name, const QString &target)
    {
        files.link(QStringLiteral("Users/alice/") + name, target);
    }

    forged_source files;
    const QString root = files.root();
};

TEST_F(source_boundary_test, finds_names_as_the_examined_mac_would)
{
    // HFS+ stores names decomposed; a copy on another file system can hold both forms.
    for (const char *name : {"U\u0308bung/e\u0301.txt", "Downloads/x", "both/\u00fc",
                             "both/u\u0308", "both/\u00dc", "two/ab", "two/aB"})
        files.write(QStringLiteral("Users/alice/") + QString::fromUtf8(name), {});
    link("Link", QStringLiteral("downloads"));
    link("Away", files.outside(QStringLiteral("private")));
    const struct
    {
        const char *proves;
        const char *asked;
        reach where;
        const char *found; // null: as asked
    } rows[] = {
        {"composed finds decomposed", "\u00dcbung/\u00e9.txt", reach::inside,
         "U\u0308bung/e\u0301.txt"},
        {"case", "downloads/X", reach::inside, "Downloads/x"},
        {"accents and case", "\u00fcBUNG/E\u0301.TXT", reach::inside, "U\u0308bung/e\u0301.txt"},
        {"an exact name wins", "both/\u00fc", reach::inside, nullptr},
        {"equivalent before case", "both/U\u0308", reach::inside, "both/\u00dc"},
        {"case alone, twice", "two/AB", reach::ambiguous, ""},
        {"a folder on the way, twice", "two/AB/c", reach::ambiguous, ""},
        {"through a link's target", "LINK/X", reach::inside, "Downloads/x"},
        {"not out of the source", "away/secret", reach::outside, ""},
        {"accents count", "Ubung/e.txt", reach::missing, ""},
    };
    const evidence::source_boundary boundary(root);
    for (const auto &row : rows) {
        SCOPED_TRACE(row.proves);
        const QString home = root + QStringLiteral("Users/alice/");
        const auto place = boundary.resolve(home + QString::fromUtf8(row.asked));
        EXPECT_EQ(place.where, row.where);
        const QString found = QString::fromUtf8(row.found == nullptr ? row.asked : row.found);
        EXPECT_EQ(place.path, found.isEmpty() ? QString() : home + found);
    }
    EXPECT_EQ(boundary.resolve(root + QStringLiteral("users/ALICE/docs/A")).path,
              root + QStringLiteral("Users/alice/docs/a"));
}

TEST_F(source_boundary_test, looking_for_other_spellings_has_an_end)
{
    const QByteArray docs = evidence::encoded_name(root + QStringLiteral("Users/alice/docs"));
    const QByteArray home = evidence::encoded_name(root + QStringLiteral("Users/alice/"));
    evidence::similar_names one_each({}, {100, 1}); // remembers one entry: the older folder goes
    for (int turn = 0; turn < 2; ++turn) {
        EXPECT_EQ(one_each.find(docs, "A").name, "a");
        EXPECT_EQ(one_each.find(home, "DOCS").name, "docs");
    }
    evidence::similar_names spent({}, {1, 100});
    EXPECT_TRUE(spent.find(docs, "A").name.isEmpty());
    EXPECT_TRUE(spent.is_spent());
}

TEST_F(source_boundary_test, follows_links_as_the_examined_machine_would)
{
    link("relative", QStringLiteral("docs/a"));
    link("absolute", QStringLiteral("/Users/alice/docs"));
    link("seen_from_here", root + QStringLiteral("Users/alice/docs"));
    link("climbs", QStringLiteral("../../../private"));
    link("away", files.outside(QStringLiteral("private")));
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
        {"../../../source/Users/alice/docs/a", reach::outside, {}},
    };
    // What is remembered of the path before must not show.
    for (const auto &before : rows) {
        const evidence::source_boundary boundary(root);
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
    const evidence::source_boundary boundary(root);
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

// A folder that was resolved can be replaced before it is opened.
TEST_F(source_boundary_test, a_folder_that_becomes_a_link_leads_nowhere)
{
    const evidence::source_boundary boundary(root);
    const QString docs = root + QStringLiteral("Users/alice/docs");
    const QString path = boundary.resolve(docs + QStringLiteral("/a")).path;
    ASSERT_FALSE(path.isNull());
    const QByteArray encoded = evidence::encoded_name(path);
    ASSERT_TRUE(QFile::rename(docs, root + "moved"));
    link("docs", files.outside(QStringLiteral("private")));
    files.write(QStringLiteral("../private/a"), "outside");

    evidence::held_file held;
    EXPECT_FALSE(held.hold(encoded));
    EXPECT_FALSE(evidence::evidence_file().open(path));
    EXPECT_FALSE(evidence::open_step_by_step(AT_FDCWD, encoded.constData(), O_RDONLY).is_open());
    EXPECT_FALSE(evidence::folder_listing().open(AT_FDCWD, evidence::encoded_name(docs)));
    EXPECT_NE(boundary.resolve(docs + QStringLiteral("/secret")).where, reach::inside);
    EXPECT_EQ(evidence::source_boundary(root).resolve(docs + "/a").where, reach::outside);
}

TEST_F(source_boundary_test, links_on_the_way_to_the_root_are_the_hosts)
{
    const QString way = files.outside(QStringLiteral("way"));
    ASSERT_TRUE(QFile::link(root, way));
    const evidence::source_boundary boundary(way + QLatin1Char('/'));
    EXPECT_EQ(boundary.resolve(way + "/Users/alice/docs/a").path, root + "Users/alice/docs/a");
    EXPECT_EQ(boundary.real_root(), root);
}

// A few such ways would keep a run busy for minutes.
TEST_F(source_boundary_test, ways_far_longer_than_any_share_a_budget)
{
    const QString deep = root + QStringLiteral("Users/alice/") + QString("d/").repeated(100);
    files.write(deep.mid(root.size()) + "a", "x");
    const evidence::source_boundary boundary(root, {}, {100, 64});
    EXPECT_EQ(boundary.resolve(deep + "gone/1").where, reach::missing);
    EXPECT_EQ(boundary.resolve(deep + "../gone/1").where, reach::missing);
    EXPECT_EQ(boundary.resolve(deep + "../../gone/1").where, reach::costly);
    EXPECT_EQ(boundary.resolve(deep + "gone/2").where, reach::missing); // remembered
    EXPECT_EQ(boundary.resolve(deep + "a").where, reach::inside);
    EXPECT_EQ(boundary.resolve(root + "Users/alice/docs/a").where, reach::inside);
}

TEST_F(source_boundary_test, refuses_what_does_not_start_at_the_root)
{
    const evidence::source_boundary boundary(root);
    EXPECT_EQ(boundary.resolve(files.outside(QStringLiteral("private/secret"))).where,
              reach::outside);
    EXPECT_EQ(boundary.resolve(files.outside(QStringLiteral("sourcery"))).where, reach::outside);
    EXPECT_EQ(boundary.resolve(QString()).where, reach::outside);
    EXPECT_EQ(boundary.resolve(root.chopped(1)).where, reach::inside);
}

} // namespace
