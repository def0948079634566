#include "formats/attributes/spotlight_value.h"

#include "tests/fixtures/printing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using formats::description_text;
using formats::spotlight_date;
using formats::spotlight_floating;
using formats::spotlight_list;
using formats::spotlight_value;

constexpr double infinity = std::numeric_limits<double>::infinity();

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

// The description without the pointers, which may be any.
QString shown(const spotlight_value &value)
{
    QString form = description_text(value);
    const int begin = form.indexOf(QLatin1String(" 0x"));
    const int end = form.indexOf(QLatin1String("]>{"));
    return begin < 0 || end < begin ? form : form.remove(begin, end + 1 - begin);
}

TEST(description_text, prints_single_values_in_debugging_form)
{
    const std::tuple<const char *, spotlight_value, const char *> cases[] = {
        {"text is not escaped", text("a \"b\"\\\n\xc3\xa9"),
         "<CFString>{contents = \"a \"b\"\\\n\xc3\xa9\"}"},
        {"short text has the same form", text("a"), "<CFString>{contents = \"a\"}"},
        {"empty text", text(""), "<CFString>{contents = \"\"}"},
        {"zero", qint64{0}, "<CFNumber>{value = +0, type = kCFNumberSInt64Type}"},
        {"smallest", std::numeric_limits<qint64>::min(),
         "<CFNumber>{value = -9223372036854775808, type = kCFNumberSInt64Type}"},
        {"double", spotlight_floating{48.8583701},
         "<CFNumber>{value = +48.85837010000000191212, type = kCFNumberFloat64Type}"},
        {"negative double", spotlight_floating{-0.1},
         "<CFNumber>{value = -0.10000000000000000555, type = kCFNumberFloat64Type}"},
        {"whole double", spotlight_floating{103.0},
         "<CFNumber>{value = +103.00000000000000000000, type = kCFNumberFloat64Type}"},
        {"single", spotlight_floating{static_cast<double>(1.4F), true},
         "<CFNumber>{value = +1.3999999762, type = kCFNumberFloat32Type}"},
        {"double zero", spotlight_floating{0.0},
         "<CFNumber>{value = +0.0, type = kCFNumberFloat64Type}"},
        {"negative zero", spotlight_floating{-0.0},
         "<CFNumber>{value = -0.0, type = kCFNumberFloat64Type}"},
        {"no number", spotlight_floating{std::nan("")},
         "<CFNumber>{value = nan, type = kCFNumberFloat64Type}"},
        {"infinity", spotlight_floating{infinity},
         "<CFNumber>{value = +infinity, type = kCFNumberFloat64Type}"},
        {"negative infinity", spotlight_floating{-infinity},
         "<CFNumber>{value = -infinity, type = kCFNumberFloat64Type}"},
        {"true", true, "<CFBoolean>{value = true}"},
        {"false", false, "<CFBoolean>{value = false}"},
    };
    for (const auto &[name, value, expected] : cases)
        EXPECT_EQ(shown(value), text(expected)) << name;
    EXPECT_EQ(description_text(true),
              text("<CFBoolean 0x7f8000000010 [0x7fff80000000]>{value = true}"));
}

TEST(description_text, prints_all_digits_of_the_largest_double)
{
    const QString form = shown(spotlight_floating{std::numeric_limits<double>::max()});
    EXPECT_TRUE(
        form.startsWith(text("<CFNumber>{value = +179769313486231570814527423731704356798")));
    EXPECT_EQ(form.indexOf(QLatin1Char('.')) - form.indexOf(QLatin1Char('+')), 310);
}

TEST(description_text, prints_dates_in_universal_time)
{
    const std::tuple<const char *, double, const char *> cases[] = {
        {"an ordinary date", 1589021112.0, "2020-05-09 10:45:12 +0000"},
        {"fraction is dropped", 1589021112.999, "2020-05-09 10:45:12 +0000"},
        {"fraction is dropped toward 1970", -0.75, "1970-01-01 00:00:00 +0000"},
        {"before 1970", -1.0, "1969-12-31 23:59:59 +0000"},
        {"leap day", 951782400.0, "2000-02-29 00:00:00 +0000"},
        {"no leap day in 1900", -2203891200.0, "1900-03-01 00:00:00 +0000"},
        {"distant future", 64092211200.0, "4001-01-01 00:00:00 +0000"},
        {"small years are padded", -62135596800.0, "0001-01-01 00:00:00 +0000"},
        {"distant past", -62135769600.0, "0000-12-30 00:00:00 +0000"},
        {"last that is printed", 1e11, "5138-11-16 09:46:40 +0000"},
    };
    for (const auto &[name, seconds, expected] : cases)
        EXPECT_EQ(description_text(spotlight_date{seconds}), text(expected)) << name;
    for (const double seconds : {1.1e11, -1.1e11, infinity, -infinity, std::nan("")})
        EXPECT_TRUE(description_text(spotlight_date{seconds}).isNull()) << seconds;
}

TEST(description_text, prints_list_elements)
{
    const std::tuple<const char *, formats::spotlight_scalar, const char *> cases[] = {
        {"letters and digits are bare", text("guide2019"), "guide2019"},
        {"empty", text(""), "\"\""},
        {"blank", text("a b"), "\"a b\""},
        {"underscore", text("first_name"), "\"first_name\""},
        {"dollar", text("$"), "\"$\""},
        {"apostrophe", text("it's"), "\"it's\""},
        {"quote and backslash", text("a\"b\\"), "\"a\\\"b\\\\\""},
        {"named controls", text("\n\t\r\a\b\v\f"), "\"\\n\\t\\r\\a\\b\\v\\f\""},
        {"other controls", text("\x01\x1f\x7f"), "\"\\U0001\\U001f\\U007f\""},
        {"above ASCII", text("\xc3\xa9\xe2\x80\x99\xe6\x88\x91"), "\"\\U00e9\\U2019\\U6211\""},
        {"surrogates", text("\xf0\x9f\x98\x80"), "\"\\Ud83d\\Ude00\""},
        {"date", spotlight_date{1589021112.5}, "\"2020-05-09 10:45:12 +0000\""},
        {"number", qint64{5}, "5"},
        {"negative number", qint64{-5}, "\"-5\""},
        {"double", spotlight_floating{48.8583701}, "\"48.8583701\""},
        {"16 digits", spotlight_floating{41.0 + 1.0 / 75}, "\"41.01333333333334\""},
        {"exponent with sign", spotlight_floating{1e20}, "\"1e+20\""},
        {"whole double", spotlight_floating{103.0}, "103"},
        {"true", true, "1"},
        {"false", false, "0"},
    };
    for (const auto &[name, element, expected] : cases) {
        const QString wanted = QLatin1String("(\n    ") + text(expected) + QLatin1String("\n)");
        EXPECT_EQ(description_text(spotlight_list{element}), wanted) << name;
    }
}

TEST(description_text, separates_list_elements)
{
    EXPECT_EQ(description_text(spotlight_list{text("https://example.org/a.zip"), text("")}),
              text("(\n    \"https://example.org/a.zip\",\n    \"\"\n)"));
    EXPECT_EQ(description_text(spotlight_list{spotlight_date{infinity}, text("a")}),
              text("(\n    a\n)"));
    EXPECT_TRUE(description_text(spotlight_list()).isNull());
    EXPECT_TRUE(description_text(spotlight_list{spotlight_date{infinity}}).isNull());
}

TEST(description_text, only_ascii_has_a_c_string)
{
    EXPECT_TRUE(formats::has_c_string(text("plain \x7f")));
    EXPECT_FALSE(formats::has_c_string(text("plain but \xc2\x80")));
    EXPECT_TRUE(formats::has_c_string(description_text(spotlight_list{text("\xc3\xa9")})));
    EXPECT_FALSE(formats::has_c_string(description_text(text("\xc3\xa9"))));
}

} // namespace
