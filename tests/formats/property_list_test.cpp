#include "platform/property_list.h"

#include "formats/property_list/binary/binary_list_nesting.h"
#include "samples/binary_list_builder.h"
#include "samples/forged_source.h"
#include "tests/fixtures/printing.h"

#include <QFile>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using formats::property_list_value;
using formats::value_kind;
using platform::property_list;

// A value as one text, in a form that shows its kind.
QString shown(const property_list_value &value)
{
    switch (value.kind()) {
    case value_kind::absent:
        return QStringLiteral("absent");
    case value_kind::text:
        return value.text().isNull() ? QStringLiteral("null") : QLatin1Char('"') + value.text();
    case value_kind::number:
        if (value.is_floating())
            return QStringLiteral("real ") + QString::number(value.double_value());
        return QString::number(value.integer_value());
    case value_kind::boolean:
        return value.double_value() == 1.0 ? QStringLiteral("yes") : QStringLiteral("no");
    case value_kind::date:
        return QStringLiteral("date ") +
               QString::number(value.seconds_since_reference_date(), 'f', 0);
    case value_kind::data:
        return QStringLiteral("data");
    case value_kind::array:
        return QStringLiteral("array of %1").arg(value.count());
    case value_kind::dictionary:
        break;
    }
    return QStringLiteral("dictionary of %1").arg(value.count());
}

QString shown_root(const QByteArray &bytes)
{
    property_list list;
    const bool is_loaded = list.load_bytes(bytes);
    EXPECT_EQ(is_loaded, !list.root().is(value_kind::absent));
    return is_loaded ? shown(list.root()) : QStringLiteral("unreadable");
}

struct shown_row
{
    const char *name;
    QByteArray bytes;
    const char *expected; // UTF-8
};

template <size_t count> void expect_shown(const shown_row (&rows)[count])
{
    for (const shown_row &row : rows)
        EXPECT_EQ(shown_root(row.bytes), QString::fromUtf8(row.expected)) << row.name;
}

QByteArray utf16(const QString &text, bool big)
{
    QByteArray bytes;
    for (const QChar unit : text) {
        bytes += static_cast<char>(big ? unit.row() : unit.cell());
        bytes += static_cast<char>(big ? unit.cell() : unit.row());
    }
    return bytes;
}

TEST(xml_property_list, reads_every_kind_of_value)
{
    const shown_row rows[] = {
        {"text", "<plist><string>a b</string></plist>", "\"a b"},
        {"empty text", "<string/>", "\""},
        {"empty text in two tags", "<string></string>", "\""},
        {"text of blanks", "<string> \n </string>", "\" \n "},
        {"line ends are kept", "<string>a\r\nb</string>", "\"a\r\nb"},
        {"a key stands for a text", "<key>a</key>", "\"a"},
        {"whole number", "<integer>42</integer>", "42"},
        {"blanks around the sign", "<integer> - 42</integer>", "-42"},
        {"plus sign", "<integer>+7</integer>", "7"},
        {"leading zeros are not octal", "<integer>0010</integer>", "10"},
        {"hexadecimal", "<integer>-0xfF</integer>", "-255"},
        {"smallest", "<integer>-9223372036854775808</integer>", "-9223372036854775808"},
        {"largest wraps", "<integer>18446744073709551615</integer>", "-1"},
        {"real", "<real>2.5e3</real>", "real 2500"},
        {"infinite real", "<real>-Infinity</real>", "real -inf"},
        {"real that is no number", "<real>nan</real>", "real nan"},
        {"true", "<true/>", "yes"},
        {"false in two tags", "<false></false>", "no"},
        {"date at the reference", "<date>2001-01-01T00:00:00Z</date>", "date 0"},
        {"date behind a leap day", "<date>2020-03-01T12:34:56Z</date>", "date 604758896"},
        {"early date", "<date>1600-02-29T00:00:00Z</date>", "date -12649305600"},
        {"data", "<data>\n\tAAEC\n</data>", "data"},
        {"array", "<array><true/><array/></array>", "array of 2"},
        {"dictionary", "<dict><key>a</key><true/></dict>", "dictionary of 1"},
        {"archive reference is none", "<dict><key>CF$UID</key><integer>1</integer></dict>",
         "unreadable"},
    };
    expect_shown(rows);
    property_list list;
    ASSERT_TRUE(list.load_bytes("<integer>18446744073709551615</integer>"));
    EXPECT_EQ(list.root().double_value(), 18446744073709551615.0);
}

TEST(xml_property_list, reads_every_encoding_and_form)
{
    const QString declared = QStringLiteral(
        "<?xml version=\"1.0\" encoding=\"UTF-16\"?><string>\u00e9\U0001f600</string>");
    const shown_row rows[] = {
        {"header and document type",
         "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//A//B\" "
         "\"http://a/b.dtd\">\n<plist version=\"1.0\">\n<dict/>\n</plist>\n",
         "dictionary of 0"},
        {"blanks before the header", "\n <?xml version=\"1.0\"?><plist><dict/></plist>",
         "dictionary of 0"},
        {"byte-order mark", "\xef\xbb\xbf<string>\xc3\xa9</string>", "\"\u00e9"},
        {"mark inside a text", "<string>\xef\xbb\xbfx</string>", "\"\ufeffx"},
        {"UTF-16, little", "\xff\xfe" + utf16(declared, false), "\"\u00e9\U0001f600"},
        {"UTF-16, big", "\xfe\xff" + utf16(declared, true), "\"\u00e9\U0001f600"},
        {"UTF-16 without mark", utf16(declared, true), "\"\u00e9\U0001f600"},
        {"declared Latin-1", "<?xml version='1.0' encoding='iso-8859-1'?><string>\xe9</string>",
         "\"\u00e9"},
        {"unknown encoding", "<?xml version='1.0' encoding='x-none'?><true/>", "unreadable"},
        {"ASCII with other bytes", "<?xml encoding='us-ascii'?><string>\xc3\xa9</string>",
         "unreadable"},
        {"half a surrogate pair", utf16(QStringLiteral("<string>"), false) + "\x3d\xd8" + "<",
         "unreadable"},
        {"CDATA between texts", "<string> a<![CDATA[<b>&amp;]]> c </string>", "\" a<b>&amp; c "},
        {"blanks around CDATA", "<array> <string> <![CDATA[x]]> </string> <true/> </array>",
         "array of 2"},
        {"text of blanks around CDATA", "<string> <![CDATA[]]>\n</string>", "\" \n"},
        {"references", "<string>&lt;&#65;&#x1F600;&amp;&quot;&apos;&gt;</string>",
         "\"<A\U0001f600&\"'>"},
        {"comments and instructions", "<!-- <a> --><array><!-- & --><? b ?><true/></array><?c?>",
         "array of 1"},
        {"odd attributes", "<plist a><string b=\"c>d</string></plist>", "\"d"},
        {"nested plist", "<plist><array><plist><true/></plist></array></plist>", "array of 1"},
        {"rest of a longer file behind it", "<plist><true/></plist>\n</dict>\n</plist>\0<", "yes"},
        {"unused entity declaration",
         "<!DOCTYPE plist [<!ENTITY a \"b\"> <!-- ] --> %c; ]><plist><true/></plist>", "yes"},
    };
    expect_shown(rows);
}

// Each of these is broken; "|" parts them.
const char broken_lists[] =
    R"(x | { a = b; } | <plist/> | <plist></plist> | <plist><true/><true/></plist> | <plist><true/> |
<dict | < | <a/> | <dict><a/></dict> | <dict>x</dict> | <dict><key>a</key></dict> |
<dict><true/><true/></dict> | <dict><![CDATA[x]]></dict> |
<dict><key>a</key><true/><key>b</key></dict> | <array><true/></dict> | </array> |
<array><string>a</array></string> | <string>a<true/></string> | <string>a<!-- b --></string> |
<string>a<?b?></string> | <string><![CDATA[a]]</string> | <string>&a;</string> |
<string>&amp</string> | <string>&#0;</string> | <string>&#xD800;</string> |
<string>&#x110000;</string> | <string>&#;</string> | <string>&#12a;</string> |
<key>&AMP;</key> | <!DOCTYPE plist [<!ENTITY a "b">]><string>&a;</string> |
<!DOCTYPE plist [<true/> | <!-- <true/> | <?xml <true/> | <integer/> | <integer></integer> |
<integer>1 </integer> | <integer>1.0</integer> | <integer>0x</integer> | <integer>-</integer> |
<integer>ff</integer> | <integer>18446744073709551616</integer> |
<integer>-9223372036854775809</integer> | <real/> | <real></real> | <real>1x</real> |
<real>1 </real> | <real>.</real> | <true>1</true> | <true> </true> | <data/> | <date/> |
<date></date> | <date>2001-01-01</date> | <date>2001-01-01T00:00:00</date> |
<date>2001-1-01T00:00:00Z</date> | <date> 2001-01-01T00:00:00Z</date>)";

TEST(xml_property_list, refuses_a_list_that_is_broken_anywhere)
{
    const QStringList broken =
        QString::fromLatin1(broken_lists).replace("\n", " ").split(QStringLiteral(" | "));
    EXPECT_EQ(broken.size(), 57);
    for (const QString &list : broken)
        EXPECT_EQ(shown_root(list.toLatin1()), QStringLiteral("unreadable")) << list.toStdString();
    for (const char *list : {"", " ", "<string>\xc3</string>", "<string>\xc0\x80</string>",
                             "<string>\xed\xa0\x80</string>", "<string>\xf4\x90\x80\x80</string>"})
        EXPECT_EQ(shown_root(list), QStringLiteral("unreadable")) << list;
    using namespace std::string_literals;
    for (const auto &with_nul :
         {"<string>a\0b</string>"s, "<data>\0</data>"s, "<array>\0</array>"s})
        EXPECT_EQ(shown_root(QByteArray::fromStdString(with_nul)), QStringLiteral("unreadable"));
}

TEST(xml_property_list, finds_entries_and_elements)
{
    property_list list;
    ASSERT_TRUE(list.load_bytes("<plist><dict>\n<key>a</key><string>first</string>"
                                "<key>a</key><string>last</string>"
                                "<key>\xc3\xa9&amp;</key><true/>"
                                "<key>in<![CDATA[ two]]></key><array> <true/> <false/> </array>"
                                "</dict></plist>"));
    const property_list_value root = list.root();
    EXPECT_EQ(shown(root.value(QStringLiteral("a"))), QStringLiteral("\"last"));
    EXPECT_EQ(shown(root.value(QStringLiteral("\u00e9&"))), QStringLiteral("yes"));
    for (const char *missing : {"", "in", "in two ", "last", "aa"})
        EXPECT_TRUE(root.value(QString::fromLatin1(missing)).is(value_kind::absent)) << missing;
    const property_list_value array = root.value(QStringLiteral("in two"));
    const char *const expected[] = {"no", "yes", "absent", "no", "absent"};
    const int indexes[] = {1, 0, 2, 1, -1};
    for (int turn = 0; turn < 5; ++turn)
        EXPECT_EQ(shown(array.at(indexes[turn])), QString::fromLatin1(expected[turn])) << turn;
    EXPECT_EQ(root.at(0).kind(), value_kind::absent);
    EXPECT_EQ(array.value(QStringLiteral("a")).kind(), value_kind::absent);
}

TEST(property_list, tells_booleans_and_numbers_apart)
{
    property_list list;
    ASSERT_TRUE(list.load_bytes(
        "<plist><array><true/><integer>1</integer><string> 2.5x</string></array></plist>"));
    const property_list_value boolean = list.root().at(0);
    const property_list_value number = list.root().at(1);
    EXPECT_EQ(boolean.class_name(), QStringLiteral("__NSCFBoolean"));
    EXPECT_TRUE(boolean.is_number());
    EXPECT_EQ(boolean.integer_value(), 1);
    EXPECT_EQ(number.class_name(), QStringLiteral("__NSCFNumber"));
    EXPECT_TRUE(number.text().isNull());
    EXPECT_EQ(list.root().at(2).double_value(), 2.5);
    EXPECT_TRUE(list.root().at(3).class_name().isNull());
}

// One object as the top of a list.
QByteArray binary(const QByteArray &object)
{
    binary_list_builder builder;
    builder.raw(object);
    return builder.list(0);
}

QByteArray hexadecimal(const char *digits)
{
    return QByteArray::fromHex(digits);
}

TEST(binary_property_list, reads_every_kind_of_value)
{
    // Short whole numbers are unsigned, those of eight bytes are signed, of sixteen the last eight
    // count.
    const QString rows = QString::fromUtf8(
        "08 no | 09 yes | 10ff 255 | 11ff00 65280 | 12ffffffff 4294967295 | "
        "13fffffffffffffffe -2 | 1400000000000000018000000000000001 -9223372036854775807 | "
        "223fc00000 real 1.5 | 23c004000000000000 real -2.5 | "
        "3341c2067570000000 date 604826336 | 42aabb data | 526162 \"ab | 50 \" | "
        "5f1003616263 \"abc | 6300e9d83dde00 \"\u00e9\U0001f600 | a0 array of 0 | "
        "d0 dictionary of 0 | 00 unreadable | 8001 unreadable | c0 unreadable | "
        "213c00 unreadable | 3200000000 unreadable | 5180 unreadable");
    for (const QString &row : rows.split(QStringLiteral(" | "))) {
        const QByteArray object = QByteArray::fromHex(row.section(' ', 0, 0).toLatin1());
        EXPECT_EQ(shown_root(binary(object)), row.section(' ', 1)) << row.toStdString();
    }
    EXPECT_EQ(shown_root(binary('\x15' + QByteArray(32, '\0'))), QStringLiteral("unreadable"));
    property_list list;
    ASSERT_TRUE(list.load_bytes(binary(hexadecimal("140000000000000000ffffffffffffffff"))));
    EXPECT_EQ(list.root().double_value(), 18446744073709551615.0);
    ASSERT_TRUE(list.load_bytes(binary(hexadecimal("14ffffffffffffffffffffffffffffffff"))));
    EXPECT_EQ(list.root().double_value(), -1);
}

TEST(binary_property_list, refuses_objects_that_reach_beyond_the_objects)
{
    const QByteArray cut = "13000000 2300 330000 42aa 5261 6100 a1 d100 5f 5f10 5f1105 5f23 "
                           "5f137fffffffffffffff 6f138000000000000000 af13ffffffffffffffff "
                           "df13ffffffffffffffff df138000000000000000 4f1400 af1200200000";
    for (const QByteArray &digits : cut.split(' '))
        EXPECT_EQ(shown_root(binary(QByteArray::fromHex(digits))), QStringLiteral("unreadable"))
            << digits.constData();
}

TEST(binary_property_list, refuses_a_forged_trailer)
{
    constexpr quint64 largest = std::numeric_limits<quint64>::max();
    const auto forged = [](auto change, quint64 top = 0) {
        binary_list_builder builder;
        builder.dictionary({});
        builder.text("a");
        change(builder);
        return shown_root(builder.list(top));
    };
    using builder = binary_list_builder;
    const QString refused = QStringLiteral("unreadable");
    EXPECT_EQ(forged([](builder &) {}), QStringLiteral("dictionary of 0"));
    EXPECT_EQ(forged([](builder &) {}, 2), refused);
    EXPECT_EQ(forged([](builder &) {}, largest), refused);
    for (const quint64 count : {quint64(0), quint64(1), quint64(3), largest / 2 + 2, largest})
        EXPECT_EQ(forged([&](builder &b) { b.forged_object_count = count; }), refused) << count;
    for (const quint64 offset : {quint64(0), quint64(8), quint64(12), largest - 3, largest})
        EXPECT_EQ(forged([&](builder &b) { b.forged_table_offset = offset; }), refused) << offset;
    for (const int bytes : {0, 1, 3, 9, 255})
        EXPECT_EQ(forged([&](builder &b) { b.forged_offset_bytes = bytes; }), refused) << bytes;
    for (const int bytes : {0, 9, 255})
        EXPECT_EQ(forged([&](builder &b) { b.forged_reference_bytes = bytes; }), refused) << bytes;
    for (const quint64 offset : {quint64(0), quint64(7), quint64(11), quint64(0xffff)})
        EXPECT_EQ(forged([&](builder &b) { b.forged_first_offset = offset; }), refused) << offset;
    EXPECT_EQ(shown_root("bplist00"), refused);
    EXPECT_EQ(shown_root("bplist00" + QByteArray(33, '\0')), refused);
}

TEST(binary_property_list, finds_entries_with_every_size_of_reference)
{
    for (int bytes = 1; bytes <= 8; ++bytes) {
        SCOPED_TRACE(bytes);
        binary_list_builder builder(bytes, bytes);
        const int key = builder.text("key");
        const int wide_key = builder.wide_text(QStringLiteral("k\u00e9y"));
        const int first = builder.integer(1, 1);
        const int second = builder.integer(2, 4);
        const int array = builder.array({first, 99, second});
        const int top = builder.dictionary(
            {{first, second}, {key, first}, {key, second}, {wide_key, array}, {array, 99}});
        property_list list;
        ASSERT_TRUE(list.load_bytes(builder.list(static_cast<quint64>(top))));
        const property_list_value root = list.root();
        EXPECT_EQ(shown(root.value(QStringLiteral("key"))), QStringLiteral("1"));
        for (const char *missing : {"kex", "ke", "key ", ""})
            EXPECT_EQ(shown(root.value(QString::fromLatin1(missing))), QStringLiteral("absent"));
        const property_list_value found = root.value(QStringLiteral("k\u00e9y"));
        ASSERT_EQ(found.count(), 3);
        const char *const expected[] = {"1", "absent", "2", "absent"};
        for (int index = 0; index < 4; ++index)
            EXPECT_EQ(shown(found.at(index)), QString::fromLatin1(expected[index])) << index;
        EXPECT_EQ(shown(found.at(-1)), QStringLiteral("absent"));
    }
}

TEST(binary_property_list, follows_a_cycle_only_as_far_as_it_is_asked)
{
    binary_list_builder builder;
    const int key = builder.text("self");
    const int top = builder.dictionary({{key, 1}});
    property_list list;
    ASSERT_TRUE(list.load_bytes(builder.list(static_cast<quint64>(top))));
    property_list_value value = list.root();
    for (int depth = 0; depth < 1000; ++depth)
        value = value.value(QStringLiteral("self"));
    EXPECT_EQ(shown(value), QStringLiteral("dictionary of 1"));
}

TEST(binary_list_nesting, measures_shared_objects_once_and_cycles_as_endless)
{
    binary_list_builder shared(4, 2);
    int top = shared.text("innermost");
    for (int level = 0; level < 100; ++level)
        top = shared.array({top, top, top});
    const QByteArray list = shared.list(static_cast<quint64>(top));
    EXPECT_FALSE(formats::nests_deeper(list, 101));
    EXPECT_TRUE(formats::nests_deeper(list, 100));

    binary_list_builder cycle;
    const int key = cycle.text("a");
    cycle.dictionary({{key, 2}});
    cycle.array({key, 1});
    EXPECT_TRUE(formats::nests_deeper(cycle.list(1), 1000));
    EXPECT_FALSE(formats::nests_deeper(cycle.list(0), 1));
    EXPECT_TRUE(formats::nests_deeper("bplist00" + QByteArray(40, '\xff'), 1000));
}

// Few bytes can name the same large text in millions of places.
TEST(binary_property_list, ends_reading_a_text_that_is_shared_without_end)
{
    binary_list_builder builder(4);
    const int key = builder.text("a");
    const int text = builder.text(QByteArray(50'000, 'x').constData());
    const int top = builder.dictionary({{key, text}});
    property_list list;
    ASSERT_TRUE(list.load_bytes(builder.list(static_cast<quint64>(top))));
    const QString wanted = QStringLiteral("a");
    EXPECT_EQ(list.root().value(wanted).text().size(), 50'000);
    qint64 units = 0;
    for (int turn = 0; turn < 1'000'000; ++turn)
        units += list.root().value(wanted).text().size();
    EXPECT_LT(units, 1024 * 1024 * 1024);
}

struct cut_row
{
    const char *name;
    QByteArray bytes;
    QString expected;
    bool is_cut;
};

void expect_cut(const std::vector<cut_row> &rows)
{
    for (const cut_row &row : rows) {
        SCOPED_TRACE(row.name);
        property_list list;
        ASSERT_TRUE(list.load_bytes(row.bytes));
        EXPECT_TRUE(list.root().text() == row.expected); // too long to be printed
        EXPECT_EQ(list.root().take_cut_text(), row.is_cut);
        EXPECT_FALSE(list.root().take_cut_text());
    }
}

constexpr int longest_text = 1 << 20;
const QString most(longest_text, QLatin1Char('x'));
const QString wide = QString(longest_text - 1, QChar(0x20ac));
const QString pair_behind = wide + QString::fromUtf8("\xf0\x9f\xa6\x86");

TEST(property_list, cuts_texts_at_the_limit)
{
    const auto xml = [](const QString &text) {
        return "<plist><string>" + text.toUtf8() + "</string></plist>";
    };
    expect_cut({{"at the limit", xml(most), most, false},
                {"beyond", xml(most + 'y'), most, true},
                {"several bytes each", xml(wide + wide), wide + QChar(0x20ac), true},
                {"a pair at the limit", xml(pair_behind), wide, true}});
}

TEST(binary_property_list, cuts_texts_at_the_limit)
{
    const auto binary_text = [](const QString &text, bool is_wide) {
        binary_list_builder builder(4);
        const QByteArray ascii = text.toLatin1();
        return builder.list(quint64(is_wide ? builder.wide_text(text) : builder.text(ascii)));
    };
    const QByteArray two_pieces =
        "<string>a<![CDATA[" + most.toUtf8() + "]]></string>"; // GNUstep reads no such text
    expect_cut({{"at the limit", binary_text(most, false), most, false},
                {"beyond", binary_text(most + 'y', false), most, true},
                {"wide", binary_text(wide + wide, true), wide + QChar(0x20ac), true},
                {"a pair at the limit", binary_text(pair_behind, true), wide, true},
                {"XML, two pieces", two_pieces, 'a' + most.left(longest_text - 1), true}});
}

TEST(property_list, reads_a_long_queue_and_walks_it)
{
    const QByteArray item = "<dict><key>Path</key><string>~/a</string><key>Remote</key><dict>"
                            "<key>Size</key><string>1</string></dict></dict>\n";
    property_list list;
    ASSERT_TRUE(list.load_bytes("<plist><array>" + item.repeated(60'000) + "</array></plist>"));
    int found = 0;
    for (int index = 0; index < list.root().count(); ++index)
        found += list.root().at(index).value(QStringLiteral("Path")).is(value_kind::text) ? 1 : 0;
    EXPECT_EQ(found, 60'000);
}

class property_list_file : public ::testing::Test
{
protected:
    [[nodiscard]] QString make_file(const QByteArray &content) const
    {
        return files.write(QStringLiteral("list"), content);
    }

    forged_source files;
    property_list list;
};

TEST_F(property_list_file, holds_a_dictionary_or_nothing)
{
    binary_list_builder builder;
    const int top = builder.dictionary({{builder.text("a"), builder.text("b")}});
    const QString a = QStringLiteral("a");
    ASSERT_TRUE(list.load(make_file(builder.list(static_cast<quint64>(top)))));
    EXPECT_EQ(list.root().value(a).text(), QStringLiteral("b"));
    ASSERT_TRUE(list.load(make_file("<plist><dict><key>a</key><string>c</string></dict></plist>")));
    EXPECT_EQ(list.root().value(a).text(), QStringLiteral("c"));
    for (const char *other :
         {"<plist><array/></plist>", "<plist><string>a</string></plist>", "", "<dict>"}) {
        EXPECT_FALSE(list.load(make_file(other))) << other;
        EXPECT_TRUE(list.root().is(value_kind::absent)) << other;
    }
}

TEST_F(property_list_file, is_regular_and_not_too_large)
{
    files.fifo(QStringLiteral("fifo"));
    EXPECT_FALSE(list.load(files.root() + "fifo"));
    EXPECT_FALSE(list.load(files.root()));
    EXPECT_FALSE(list.load(files.root() + "missing"));
    EXPECT_FALSE(list.load(QStringLiteral("/dev/zero")));
    const QString path = make_file("<plist><dict/></plist>");
    EXPECT_TRUE(list.load(path));
    ASSERT_TRUE(QFile::resize(path, 32 << 20));
    EXPECT_TRUE(list.load(path));
    ASSERT_TRUE(QFile::resize(path, (32 << 20) + 1));
    EXPECT_FALSE(list.load(path));
}

} // namespace
