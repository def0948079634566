// What both platforms promise to the rest of the plug-in. What they read from the bytes of a
// property list is in property_list_test.
#include "evidence/access/held_file.h"
#include "platform/image_properties.h"
#include "platform/property_list.h"
#include "platform/spotlight_item.h"
#include "samples/forged_source.h"
#include "tests/fixtures/platform_contract.h"
#include "evidence/files/file_names.h"
#include "host_interface/library/plugin_static_function.h"
#include "tests/fixtures/log_capture.h"
#include "tests/fixtures/held_place.h"
#include "tests/fixtures/printing.h"

#include <QFileInfo>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <limits>

namespace {

class platform_contract : public ::testing::Test
{
protected:
    void TearDown() override
    {
        item.reset();
        EXPECT_EQ(fixture->faults(), QStringList());
    }

    [[nodiscard]] QString make_file(const QString &name) const
    {
        return QFileInfo(files.write(name, {})).canonicalFilePath();
    }

    forged_source files;
    std::unique_ptr<contract_fixture> fixture = make_contract_fixture();
    std::unique_ptr<platform::spotlight_catalog> catalog =
        platform::make_spotlight_catalog(files.root());
    std::shared_ptr<platform::spotlight_item> item;
};

using reader = QString (*)(void *key, void *dictionary);

template <QString (*labelled)(void *, void *, QString)> QString with_label(void *key, void *in)
{
    return labelled(key, in, QStringLiteral("Label"));
}

constexpr reader text_of = plugin_static_function::get_nsstring_values;
constexpr reader number_of = plugin_static_function::get_nsnumber_values;
constexpr reader yes_no_of = plugin_static_function::get_nsnumber_values_yes_no;
constexpr reader labelled_text = with_label<plugin_static_function::get_nsstring_key_and_values>;
constexpr reader labelled_number = with_label<plugin_static_function::get_nsnumber_key_and_values>;
constexpr reader labelled_yes_no =
    with_label<plugin_static_function::get_nsnumber_key_and_value_yes_no>;
constexpr reader labelled_array = with_label<plugin_static_function::get_nsarray_key_and_values>;

QByteArray list_with(const char *value)
{
    return QByteArray("<plist><dict><key>k\xc3\xa9y</key>") + value + "</dict></plist>";
}

const QString key_text = QStringLiteral("k\u00e9y");

TEST_F(platform_contract, single_values_are_read_by_their_class)
{
    struct row
    {
        const char *name;
        reader read;
        const char *value;
        const char *expected; // null: a null text
    };
    const row rows[] = {
        {"text is trimmed", text_of, "<string> a \xe2\x82\xac\n</string>", "a \xe2\x82\xac"},
        {"empty text", text_of, "<string/>", ""},
        {"number is no text", text_of, "<integer>5</integer>", nullptr},
        {"number is cut off", number_of, "<real>2.9</real>", "2"},
        {"negative number is cut off", number_of, "<real>-2.9</real>", "-2"},
        {"whole number", number_of, "<integer>-9007199254740992</integer>", "-9007199254740992"},
        {"boolean is a number", number_of, "<true/>", "1"},
        {"text is no number", number_of, "<string>5</string>", nullptr},
        {"true", yes_no_of, "<true/>", "YES"},
        {"false", yes_no_of, "<false/>", "NO"},
        {"1 is no boolean", yes_no_of, "<integer>1</integer>", nullptr},
        {"text is no boolean", yes_no_of, "<string>YES</string>", nullptr},
        {"labelled text", labelled_text, "<string> a </string>", "Label:+:a"},
        {"labelled text of a number", labelled_text, "<real>1</real>", nullptr},
        {"labelled number", labelled_number, "<real>-2.9</real>", "Label:+:-2"},
        {"labelled number of a date", labelled_number, "<date>2001-01-01T00:00:00Z</date>",
         nullptr},
        {"labelled 1", labelled_yes_no, "<integer>1</integer>", "Label:+:YES"},
        {"labelled false", labelled_yes_no, "<false/>", "Label:+:NO"},
        {"labelled 2", labelled_yes_no, "<integer>2</integer>", "Label:+:"},
        {"labelled yes or no of a text", labelled_yes_no, "<string>1</string>", nullptr},
        {"array", labelled_array, "<array><string>a</string><string> \xc3\xa9</string></array>",
         "Label:+:a;\xc3\xa9"},
        {"empty array", labelled_array, "<array/>", "Label:+:"},
        {"array with a number", labelled_array,
         "<array><integer>1</integer><string>a</string></array>", "Label:+:;a"},
        {"array of a text", labelled_array, "<string>a</string>", nullptr},
    };
    log_capture log;
    for (const row &row : rows) {
        SCOPED_TRACE(row.name);
        const QString found =
            row.read(fixture->key(key_text), fixture->dictionary(list_with(row.value)));
        EXPECT_EQ(found, QString::fromUtf8(row.expected));
        EXPECT_EQ(found.isNull(), row.expected == nullptr);
        void *other =
            fixture->dictionary("<plist><dict><key>a</key><string>b</string></dict></plist>");
        EXPECT_TRUE(row.read(fixture->key(key_text), other).isNull());
        EXPECT_TRUE(row.read(nullptr, other).isNull());
        EXPECT_TRUE(row.read(fixture->key(key_text), nullptr).isNull());
    }
    EXPECT_EQ(log.take_messages(), QStringList());
}

TEST_F(platform_contract, a_dictionary_that_changes_between_two_look_ups_is_a_failure)
{
    struct row
    {
        reader read;
        const char *first;
        const char *logged; // null: nothing
    };
    const row rows[] = {
        {text_of, "<string>a</string>", "[get_nsstring_values]-----FAILED----- to get value: "},
        {number_of, "<real>1</real>", "[get_nsnumber_values]-----FAILED----- to get value: "},
        {yes_no_of, "<true/>", "[get_nsnumber_values_yes_no]-----FAILED----- to get value: "},
        {labelled_text, "<string>a</string>", nullptr},
        {labelled_number, "<real>1</real>", nullptr},
        {labelled_yes_no, "<true/>", nullptr},
        {labelled_array, "<array/>", nullptr},
    };
    log_capture log;
    for (const row &row : rows) {
        SCOPED_TRACE(row.first);
        const QByteArray good = list_with(row.first);
        void *key = fixture->key(key_text);
        for (const QByteArray &later :
             {QByteArray("<plist><dict/></plist>"), list_with("<data></data>")}) {
            EXPECT_TRUE(row.read(key, fixture->changing_dictionary(good, later)).isNull());
            const QString line = QLatin1String(row.logged) + key_text;
            EXPECT_EQ(log.take_messages(),
                      row.logged == nullptr ? QStringList() : QStringList(line));
            EXPECT_TRUE(row.read(key, fixture->changing_dictionary(later, good)).isNull());
            EXPECT_EQ(log.take_messages(), QStringList());
        }
        EXPECT_FALSE(row.read(key, fixture->changing_dictionary(good, good)).isNull());
    }
}

TEST_F(platform_contract, a_text_comes_over_whole)
{
    const QString texts[] = {
        QStringLiteral(""),
        QStringLiteral(" a\n"),
        QStringLiteral("\u00e9\u6771\U0001f600"),
        QString(QChar(0xd800)) + QLatin1Char('a'),
        QStringLiteral("a") + QChar(0) + QLatin1Char('b'),
        QString(100'000, QLatin1Char('x')),
    };
    for (const QString &text : texts) {
        const QString found =
            plugin_static_function::convert_cfstring_to_qstring(fixture->cfstring(text));
        EXPECT_EQ(found, text);
        EXPECT_FALSE(found.isNull());
    }
    EXPECT_TRUE(plugin_static_function::convert_cfstring_to_qstring(nullptr).isNull());
}

// The zone of this program is half an hour off the full hours, and has summer time.
TEST_F(platform_contract, a_date_is_turned_into_seconds)
{
    const std::pair<double, qint64> rows[] = {
        {0.0, 0},
        {1589021112.75, 1589021112},
        {1577880000.0, 1577880000},  // noon
        {1593561600.25, 1593561600}, // summer
        {-86400.0, -86400},
    };
    for (const auto &[seconds, expected] : rows) {
        NSDate *date = fixture->date(seconds);
        EXPECT_EQ(plugin_static_function::convert_nsdate_to_epoch(date, fixture->object_of(date)),
                  expected);
        EXPECT_EQ(plugin_static_function::convert_nsdate_to_epoch(date, fixture->text_object()), 0);
        EXPECT_EQ(plugin_static_function::convert_nsdate_to_epoch(date, nullptr), 0);
        EXPECT_EQ(
            plugin_static_function::convert_nsdate_to_epoch(nullptr, fixture->object_of(date)), 0);
    }
}

TEST_F(platform_contract, an_attribute_is_described_as_core_foundation_prints_it)
{
    const QString name = QStringLiteral("kMDItemComment");
    for (const char *text : {"a \"b\"", "\xc3\xa9"}) {
        const QString path = make_file(QString::fromUtf8(text));
        if (!fixture->give_attribute(path, name, QString::fromUtf8(text)))
            GTEST_SKIP() << "needs the stand-ins for Apple's frameworks";
        item = catalog->item(held_place(path));
        ASSERT_NE(item, nullptr);
        const auto found = item->attribute(name);
        ASSERT_TRUE(found);
        EXPECT_TRUE(found->text.endsWith(QStringLiteral(">{contents = \"%1\"}").arg(text)));
        EXPECT_EQ(found->c_string, *text == 'a' ? found->text : QString()); // ASCII alone has one
        EXPECT_FALSE(item->attribute(QStringLiteral("kMDItemCopyright")));
    }
    EXPECT_EQ(catalog->item(held_place(files.root() + "missing")), nullptr);
}

TEST_F(platform_contract, a_position_is_read_from_an_image)
{
    using position = formats::gps_position;
    const QString north = QStringLiteral("N");
    const position rows[] = {
        {48.8583701, north, 2.2944813, QStringLiteral("E")},
        {33.5, QStringLiteral("S"), 70.25, QStringLiteral("W")},
        {0.0, north, std::nullopt, {}},
        {48.5, {}, 2.5, {}},
        {},
    };
    int index = 0;
    for (const position &row : rows) {
        SCOPED_TRACE(index);
        const QString path = make_file(QStringLiteral("%1 \u00e9.tiff").arg(++index));
        if (!fixture->give_position(path, row))
            GTEST_SKIP() << "needs the stand-ins for Apple's frameworks";
        const position found = platform::read_gps_position(held_place(path));
        ASSERT_EQ(found.latitude.has_value(), row.latitude.has_value());
        ASSERT_EQ(found.longitude.has_value(), row.longitude.has_value());
        EXPECT_NEAR(found.latitude.value_or(0), row.latitude.value_or(0), 1e-9);
        EXPECT_NEAR(found.longitude.value_or(0), row.longitude.value_or(0), 1e-9);
        EXPECT_EQ(found.latitude_reference, row.latitude_reference);
        EXPECT_EQ(found.longitude_reference, row.longitude_reference);

        const QString link = path + QStringLiteral(".link");
        ASSERT_TRUE(QFile::link(path, link));
        EXPECT_FALSE(platform::read_gps_position(held_place(link)).latitude);
    }
    EXPECT_FALSE(platform::read_gps_position(held_place(files.root() + "none")).latitude);
    files.fifo(QStringLiteral("fifo"));
    EXPECT_FALSE(platform::read_gps_position(held_place(files.root() + "fifo")).latitude);
}

TEST_F(platform_contract, times_are_those_of_the_entry_itself)
{
    const QString path = make_file(QStringLiteral("\u00e9"));
    const QString link = files.root() + "link";
    const timespec times[] = {{-2, 500'000'000}, {4102444800, 999'999'999}};
    ASSERT_EQ(::utimensat(AT_FDCWD, evidence::encoded_name(path).constData(), times, 0), 0);
    ASSERT_TRUE(QFile::link(path, link));
    evidence::held_file held;
    ASSERT_TRUE(held.hold(evidence::encoded_name(path)));
    const evidence::file_times found = held.status().times;
    EXPECT_EQ(found.accessed_ms, -1500);
    EXPECT_EQ(found.modified_ms, 4102444800'999);
    ASSERT_TRUE(held.hold(evidence::encoded_name(link)));
    EXPECT_NE(held.status().times.modified_ms, found.modified_ms);
    EXPECT_FALSE(held.hold(evidence::encoded_name(files.root() + "missing")));
}

} // namespace
