#include "metadata/extended_attributes.h"

#include "formats/attributes/attribute_name.h"
#include "formats/attributes/attribute_value.h"
#include "samples/apple_double_builder.h"
#include "samples/attribute_values.h"
#include "tests/fixtures/printing.h"
#include "tests/fixtures/shown_attribute.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <limits>

namespace {

using formats::metadata_value;

TEST(attribute_name, finds_the_name_that_macos_gave)
{
    const std::tuple<const char *, const char *, int> names[] = {
        {"com.apple.metadata:kMDItemWhereFroms", "com.apple.metadata:kMDItemWhereFroms", 1},
        {"osx.com.apple.FinderInfo", "com.apple.FinderInfo", 0},
        {"user.com.apple.FinderInfo", "com.apple.FinderInfo", 2},
        {"user.DosStream.com.apple.metadata\xef\x80\xa2kMDItemWhereFroms:$DATA",
         "com.apple.metadata:kMDItemWhereFroms", 3},
        {"user.com.apple.metadata\xef\x80\xa2kMDItemWhereFroms",
         "com.apple.metadata:kMDItemWhereFroms", 2},
        {"user.a:$data", "a", 2},
        {"user.osx.a", "osx.a", 2},
        {"\xef\x80\xa0\xef\x80\xa1\xef\x80\xa3\xef\x80\xa4\xef\x80\xa5\xef\x80\xa6\xef\x80\xa7"
         "\xef\x80\xa8\xef\x80\xa9\xef\x80\xaa",
         "\"*<>?\\| .\xef\x80\xaa", 1},
        {"cut off \xef\x80", "cut off \xef\x80", 1},
        {"com.apple.metadata:_kMDItemUserTags#S", "com.apple.metadata:_kMDItemUserTags", 1},
        {"osx.a#CPN", "a", 0},
        {"com.apple.lastuseddate#PS", "com.apple.lastuseddate#PS", 1},
        {"user.DosStream.com.apple.lastuseddate#PS:$DATA", "com.apple.lastuseddate#PS", 3},
        {"a#", "a#", 1},
        {"a#1", "a#1", 1},
    };
    for (const auto &[listed, canonical, preference] : names) {
        const formats::attribute_name name = formats::canonical_attribute_name(listed);
        EXPECT_STREQ(name.canonical.constData(), canonical) << listed;
        EXPECT_EQ(name.preference, preference) << listed;
    }
}

TEST(attribute_value, decides_by_content)
{
    const QByteArray urls = list_of_texts({QStringLiteral("http://a"), QString()});
    const QByteArray xml = "<plist version=\"1.0\"><array><string>a b</string></array></plist>";
    const std::tuple<const char *, QByteArray, const char *> values[] = {
        {"binary list", urls, "(\n    \"http://a\",\n    \"\"\n)"},
        {"binary list with a server's NUL", urls + '\0', "(\n    \"http://a\",\n    \"\"\n)"},
        {"binary list with two NULs", urls + QByteArray(2, '\0'), "absent"},
        {"truncated binary list", urls.left(urls.size() - 1), "absent"},
        {"text",
         list_of_object("\x51"
                        "a"),
         "{contents = \"a\"}"},
        {"boolean", list_of_object("\x09"), "{value = true}"},
        {"integer of 8 bytes is signed", list_of_object('\x13' + QByteArray(8, '\xff')),
         "{value = -1, type = kCFNumberSInt64Type}"},
        {"shorter integer is not", list_of_object("\x10\xff"),
         "{value = +255, type = kCFNumberSInt64Type}"},
        {"date", list_of_object(date_object(600000000.75)), "2020-01-06 10:40:00 +0000"},
        {"date out of range", list_of_object(date_object(1e12)), "absent"},
        {"date that is no number",
         list_of_object(date_object(std::numeric_limits<double>::quiet_NaN())), "absent"},
        {"raw data",
         list_of_object("\x41"
                        "a"),
         "absent"},
        {"dictionary", list_of_object("\xd0"), "absent"},
        {"empty list", list_of_texts({}), "absent"},
        {"XML list", xml, "(\n    \"a b\"\n)"},
        {"XML list after a mark and blanks", "\xef\xbb\xbf \n" + xml, "(\n    \"a b\"\n)"},
        {"XML list with a server's NUL", xml + '\0', "(\n    \"a b\"\n)"},
        {"broken XML list", "<?xml version=\"1.0\"?><plist>", "absent"},
        {"plain text", "a \xc3\xa9", "{contents = \"a \xc3\xa9\"}"},
        {"plain text with a NUL", QByteArray("abc\0", 4), "{contents = \"abc\"}"},
        {"plain text with two NULs", QByteArray("abc\0\0", 5), "absent"},
        {"no UTF-8", "a \xff", "absent"},
        {"cut off in UTF-8", "a \xc3", "absent"},
        {"empty", "", "absent"},
        {"NUL alone", QByteArray(1, '\0'), "absent"},
    };
    for (const auto &[name, bytes, expected] : values)
        EXPECT_EQ(shown_attribute(metadata_value(bytes)), QString::fromUtf8(expected)) << name;
}

TEST(attribute_value, keeps_the_parts_of_a_list_that_have_a_text)
{
    binary_list_builder builder;
    const int text = builder.text("a");
    const int data = builder.raw("\x41"
                                 "a");
    const int date = builder.raw(date_object(0));
    const int inner = builder.array({text});
    const int top = builder.array({text, data, inner, date, text});
    EXPECT_EQ(shown_attribute(metadata_value(builder.list(static_cast<quint64>(top)))),
              QStringLiteral("(\n    a,\n    \"2001-01-01 00:00:00 +0000\",\n    a\n)"));
    const int own = builder.array({text, top + 1});
    EXPECT_EQ(shown_attribute(metadata_value(builder.list(static_cast<quint64>(own)))),
              QStringLiteral("(\n    a\n)"));
}

TEST(attribute_value, a_small_list_cannot_name_one_text_without_end)
{
    binary_list_builder builder;
    const int text = builder.text(QByteArray(5000, 'a').constData());
    const auto top = static_cast<quint64>(builder.array(std::vector<int>(20000, text)));
    EXPECT_FALSE(metadata_value(builder.list(top)));
}

TEST(attribute_value, reads_the_last_use)
{
    const QByteArray example = QByteArray::fromHex("00105e5f0000000080b2e60e00000000");
    const std::tuple<const char *, QByteArray, const char *> values[] = {
        {"as written", example, "2020-09-13 12:26:40 +0000"},
        {"with a server's NUL", example + '\0', "2020-09-13 12:26:40 +0000"},
        {"with another byte", example + '\1', "absent"},
        {"too short", example.left(15), "absent"},
        {"before 1970", last_used(-10, 0), "1969-12-31 23:59:50 +0000"},
        {"most nanoseconds", last_used(10, 999999999), "1970-01-01 00:00:10 +0000"},
        {"too many nanoseconds", last_used(10, 1000000000), "absent"},
        {"negative nanoseconds", last_used(10, -1), "absent"},
        {"out of range", last_used(std::numeric_limits<qint64>::max(), 0), "absent"},
    };
    for (const auto &[name, bytes, expected] : values)
        EXPECT_EQ(shown_attribute(formats::last_used_value(bytes)), QString::fromUtf8(expected))
            << name;
}

TEST(attribute_value, reads_what_the_finder_keeps)
{
    const QByteArray info = finder_bytes(0x4000 | 0x000c, 0x649134c0);
    const QByteArray other = finder_bytes(0x0010, 0);
    const std::tuple<const char *, QByteArray, const char *, const char *> values[] = {
        {"date added", info, "kMDItemDateAdded", "2023-06-20 05:10:24 +0000"},
        {"blanked date added", other, "kMDItemDateAdded", "absent"},
        {"invisible", info, "kMDItemFSInvisible", "{value = true}"},
        {"visible", other, "kMDItemFSInvisible", "{value = false}"},
        {"label", info, "kMDItemFSLabel", "{value = +6, type = kCFNumberSInt64Type}"},
        {"hidden extension", other, "kMDItemFSIsExtensionHidden", "{value = true}"},
        {"with a server's NUL", info + '\0', "kMDItemFSInvisible", "{value = true}"},
        {"zeros", QByteArray(32, '\0'), "kMDItemFSInvisible", "absent"},
        {"too short", info.left(31), "kMDItemFSInvisible", "absent"},
        {"other attribute", info, "kMDItemKind", "absent"},
    };
    for (const auto &[name, bytes, attribute, expected] : values) {
        const auto look_up = [&, &stored = bytes](const QByteArray &wanted) {
            return wanted == "com.apple.FinderInfo" ? std::optional<QByteArray>(stored)
                                                    : std::nullopt;
        };
        EXPECT_EQ(shown_attribute(formats::spotlight_attribute(QLatin1String(attribute), look_up)),
                  QString::fromUtf8(expected))
            << name;
    }
}

TEST(attribute_value, counts_only_in_the_class_that_its_name_declares)
{
    const char date[] = "2020-05-09 10:45:12 +0000";
    const char two[] = "<array><string>a b</string><date>2020-05-09T10:45:12Z</date></array>";
    const std::tuple<const char *, const char *, QString> values[] = {
        {"kMDItemContentCreationDate", "<string>today</string>", "absent"},
        {"kMDItemContentCreationDate", "<date>2020-05-09T10:45:12Z</date>", date},
        {"kMDItemContentCreationDate", "<array><date>2020-05-09T10:45:12Z</date></array>", date},
        {"kMDItemContentCreationDate", two, "absent"},
        {"kMDItemUsedDates", "<string>today</string>", "absent"},
        {"kMDItemUsedDates", "<array><true/></array>", "absent"},
        {"kMDItemUsedDates", two, QStringLiteral("(\n    \"%1\"\n)").arg(date)},
        {"kMDItemUsedDates", "<date>2020-05-09T10:45:12Z</date>",
         QStringLiteral("(\n    \"%1\"\n)").arg(date)},
        {"kMDItemWhereFroms", "<string>a b</string>", "(\n    \"a b\"\n)"},
        {"kMDItemWhereFroms", "<integer>5</integer>", "absent"},
        {"kMDItemWhereFroms", two, QStringLiteral("(\n    \"a b\",\n    \"%1\"\n)").arg(date)},
        {"org_bittorrent_torrent_filenames", "<string>a b</string>", "(\n    \"a b\"\n)"},
        {"kMDItemKind", "<integer>5</integer>", "absent"},
        {"kMDItemAltitude", "<string>5</string>", "absent"},
        {"kMDItemFSInvisible", "<integer>1</integer>", "{value = +1, type = kCFNumberSInt64Type}"},
        {"kMDItemComment", "<integer>5</integer>", "{value = +5, type = kCFNumberSInt64Type}"},
        // What the Finder keeps answers.
        {"kMDItemFSInvisible", "<string>yes</string>", "{value = false}"},
        {"kMDItemDateAdded", "<string>today</string>", "2023-06-20 05:10:24 +0000"},
    };
    for (const auto &[name, stored, expected] : values) {
        const auto look_up = [&, name = name, stored = stored](const QByteArray &wanted) {
            if (wanted == "com.apple.FinderInfo")
                return std::optional<QByteArray>(finder_bytes(0, 0x649134c0));
            return wanted == QByteArray("com.apple.metadata:") + name
                       ? std::optional<QByteArray>(QByteArray("<plist>") + stored + "</plist>")
                       : std::nullopt;
        };
        EXPECT_EQ(shown_attribute(formats::spotlight_attribute(QLatin1String(name), look_up)),
                  expected)
            << name << stored;
    }
}

class extended_attributes_test : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QFile made(folder.filePath(QStringLiteral("file")));
        ASSERT_TRUE(made.open(QIODevice::WriteOnly));
        path = made.fileName();
        if (!set("user.probe", "x"))
            GTEST_SKIP() << "needs a temporary folder whose file system takes user attributes";
    }
    bool set(const QByteArray &name, const QByteArray &value) const
    {
        return set_attribute(QFile::encodeName(path), name, value);
    }
    QString shown(const char *name, const QString &of = {})
    {
        metadata::source_file file;
        file.path = of.isNull() ? path : of;
        file.encoded_path = QFile::encodeName(file.path);
        auto held = std::make_shared<evidence::held_file>();
        static_cast<void>(held->hold(file.encoded_path));
        file.held = held;
        return shown_attribute(source.open(file)->attribute(QLatin1String(name)));
    }

    QTemporaryDir folder;
    QString path;
    metadata::extended_attributes source;
};

TEST_F(extended_attributes_test, answers_under_the_names_of_copies_and_shares)
{
    ASSERT_TRUE(set("user.com.apple.metadata:kMDItemWhereFroms",
                    list_of_texts({QStringLiteral("http://a")})));
    ASSERT_TRUE(set("user.DosStream.com.apple.metadata\xef\x80\xa2kMDItemFinderComment:$DATA",
                    QByteArray("seen\0", 5)));
    ASSERT_TRUE(set("user.com.apple.lastuseddate#PS", last_used(1600000000, 0)));
    ASSERT_TRUE(set("user.com.apple.metadata:kMDLabel_x", "text"));
    ASSERT_TRUE(set("user.hfsfuse.record.date_created", "2015-05-09T10:45:12+02:00"));
    EXPECT_EQ(shown("kMDItemWhereFroms"), QStringLiteral("(\n    \"http://a\"\n)"));
    EXPECT_EQ(shown("kMDItemFinderComment"), QStringLiteral("{contents = \"seen\"}"));
    EXPECT_EQ(shown("kMDItemLastUsedDate"), QStringLiteral("2020-09-13 12:26:40 +0000"));
    EXPECT_EQ(shown("kMDItemFSCreationDate"), QStringLiteral("2015-05-09 08:45:12 +0000"));
    EXPECT_EQ(shown("kMDItemUsedDates"), QStringLiteral("absent"));
    EXPECT_EQ(shown("kMDLabel_x"), QStringLiteral("absent"));
    EXPECT_EQ(shown("kMDItemKind"), QStringLiteral("absent"));
    EXPECT_EQ(source.take_notes().size(), 2); // one for each prefix
    EXPECT_EQ(shown("kMDItemFinderComment"), QStringLiteral("{contents = \"seen\"}"));
    EXPECT_TRUE(source.take_notes().isEmpty());
}

TEST_F(extended_attributes_test, prefers_names_without_flags_and_of_copies)
{
    ASSERT_TRUE(set("user.DosStream.com.apple.metadata:kMDItemFinderComment:$DATA", "share"));
    ASSERT_TRUE(set("user.com.apple.metadata:kMDItemFinderComment#S", "flags"));
    EXPECT_EQ(shown("kMDItemFinderComment"), QStringLiteral("{contents = \"flags\"}"));
    ASSERT_TRUE(set("user.com.apple.metadata:kMDItemFinderComment", "plain"));
    EXPECT_EQ(shown("kMDItemFinderComment"), QStringLiteral("{contents = \"plain\"}"));
}

TEST_F(extended_attributes_test, links_are_not_followed)
{
    ASSERT_TRUE(set("user.com.apple.metadata:kMDItemFinderComment", "examiner's"));
    const QString link = folder.filePath(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(path, link));
    EXPECT_EQ(shown("kMDItemFinderComment", link), QStringLiteral("absent"));
}

} // namespace
