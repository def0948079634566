#include "host_interface/library/plugin_static_function.h"
#include "text/text_replace.h"

#include "tests/fixtures/printing.h"

#include <gtest/gtest.h>

namespace {

using library = plugin_static_function;

struct text_row
{
    const char *name;
    QString (*filter)(QString);
    const char *input;
    const char *expected; // nullptr: a null or empty text
};

class value_filters_test : public ::testing::Test
{
protected:
    void SetUp() override { library::set_essentials(); }
    void TearDown() override
    {
        library::set_cancel_extraction(false);
        library::source_os_version_full.clear();
    }
};

constexpr char two_urls[] =
    "(\n    \"https://a.example/x,y.zip\",\n    \"https://b.example/<1>\"\n)";

constexpr auto number = library::get_filtered_number_value;
constexpr auto boolean = library::get_filtered_boolean_value;
constexpr auto cfstring = library::get_filtered_cfstring_value;
constexpr auto where_from = library::get_filtered_wherefrom_value;
constexpr auto list = library::get_filtered_string_value;
constexpr auto escapes = library::convert_string_to_unicode;

constexpr text_row filter_rows[] = {
    {"number", number, " <CFNumber 0x7f [0x7f]>{value = +5, type = kCFNumberSInt64Type}", "5"},
    {"number: negative is lost", number,
     "<CFNumber 0x7f [0x7f]>{value = -3, type = kCFNumberSInt64Type}", nullptr},
    {"number: between the first two plus signs", number, "a+ 1 +2,", "1"},
    {"number: needs a comma", number, "{value = +5}", nullptr},
    {"boolean", boolean, "<CFBoolean 0x7f [0x7f]>{value = true}", "true"},
    {"boolean: no brace group", boolean, "value = true", nullptr},
    {"boolean: no value", boolean, "]>{value}", nullptr},
    {"boolean: second group is not looked at", boolean, "]>{a]>{value = true}", nullptr},
    {"boolean: empty value", boolean, "]>{=", nullptr},
    {"string", cfstring, "<CFString 0x7f [0x7f]>{contents = \" a \"b\" \"}", "a b"},
    {"string: cut at its first equals sign", cfstring,
     "<CFString 0x7f [0x7f]>{contents = \"ab=c\"}", "a"},
    {"where from: two addresses", where_from, two_urls,
     "https://a.example/x\ny.zip;https://b.example/(1)"},
    {"where from: blank pairs from the left", where_from, "a   b    c", "a bc"},
    {"where from: no second look", where_from, "x((\"\"y", "x(y"},
    {"where from: apostrophe", where_from, "(\"Bob\\U2019s\\U2019t\")", "Bob's\\U2019t"},
    {"where from: other characters stay", where_from, "é’我😀", "é’我😀"},
    {"where from: blank", where_from, " \n ", nullptr},
    {"list: two names", list, "(\n    \"a (1).txt\",\n    \"b\"\n)", "a 1.txt;b"},
    {"list: empty elements stay", list, ",a,", ";a;"},
    {"list: blank", list, " ", nullptr},
    {"escapes", escapes, "caf\\U00e9 \\Ud83d\\Ude00.", "café 😀."},
    {"escapes: half a pair stays", escapes, "\\Ud83dx\\Ude00", "\\Ud83dx\\Ude00"},
    {"escapes: half a pair before a character", escapes, "\\Ud83d\\U0041", "\\Ud83dA"},
    {"escapes: cut short", escapes, "\\U20", "\\U20"},
    {"escapes: no digits", escapes, "C:\\Users\\U00zz", "C:\\Users\\U00zz"},
    {"escapes: printed backslash", escapes, "\\\\U0041\\\\\\U0041", "\\\\U0041\\\\A"},
    {"escapes: NUL stays", escapes, "\\U0000", "\\U0000"},
    {"escapes: result is not read again", escapes, "\\U005cU0041", "\\U0041"},
};

TEST_F(value_filters_test, single_texts)
{
    for (const text_row &row : filter_rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.filter(QString::fromUtf8(row.input)), QString::fromUtf8(row.expected));
    }
}

TEST_F(value_filters_test, nul_and_lone_surrogates_do_not_end_a_text)
{
    const QString hostile = QString("a") + QChar(0) + QChar(0xd800) + "b";
    EXPECT_EQ(library::get_filtered_wherefrom_value(hostile), QString("a") + QChar(0) + "?b");
}

TEST_F(value_filters_test, replaces_as_qt_does)
{
    for (const char *text : {"", "aaaa", "aaaaa", "baab", "abab", "aabaa", "b"}) {
        for (const char *before : {"a", "aa", "ab", "aba"}) {
            QString ours = QString::fromLatin1(text);
            QString theirs = ours;
            for (const char *after : {"", "b", "ab"}) {
                text::replace_every(&ours, QLatin1String(before), QLatin1String(after));
                theirs.replace(QLatin1String(before), QLatin1String(after));
                EXPECT_EQ(ours, theirs) << text << ' ' << before << ' ' << after;
            }
        }
    }
}

TEST_F(value_filters_test, cancelled_list_gives_nothing)
{
    library::set_cancel_extraction(true);
    EXPECT_TRUE(library::get_filtered_string_value("a,b").isEmpty());
    EXPECT_TRUE(library::get_unmatched_varible_list_of_parentlist({"a"}, {}).isEmpty());
}

TEST_F(value_filters_test, unmatched_items_keep_order_and_repeats)
{
    EXPECT_EQ(library::get_unmatched_varible_list_of_parentlist({"b", "A", "b", "a", ""}, {"a"}),
              QStringList({"b", "A", "b", ""}));
    EXPECT_TRUE(library::get_unmatched_varible_list_of_parentlist({}, {"a"}).isEmpty());
}

TEST_F(value_filters_test, scan_version_by_scheme)
{
    const char *rows[][3] = {{"macOS", "10.15.7", "10.15"},
                             {"macOS", "11.2.3", "11"},
                             {"macOS", "macOS 10_15 (19H2)", "10.15"},
                             {"macOS", "10", "10"},
                             {"macOS", "100.1", "100"},
                             {"iOS_UID", "14.2", "14"},
                             {"winOS", "Windows 10 Pro", "10"},
                             {"winOS", "8.1", "8"},
                             {"linux", "10.1", ""},
                             {"macOS", "", ""}};
    for (const auto &row : rows) {
        library::source_os_version_full = row[1];
        EXPECT_EQ(library::get_source_os_scan_version(row[0]), row[2]) << row[0] << ' ' << row[1];
    }
}

} // namespace
