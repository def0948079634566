// CTest runs this program under several time zones and languages: but for the tests of local time,
// every expectation is the same in all of them.
#include "platform/foundation_values.h"
#include "platform/spotlight_item.h"
#include "text/dates/date_parsing.h"
#include "host_interface/library/plugin_static_function.h"
#include "extraction/copies/used_dates.h"

#include "samples/forged_source.h"
#include "tests/fixtures/printing.h"

#include <QFile>
#include <QLocale>
#include <QMap>
#include <QTimeZone>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

using library = plugin_static_function;

struct text_row
{
    const char *name;
    QString (*convert)(QString);
    const char *input;
    const char *expected; // nullptr: a null or empty text
};

void expect_rows(const std::vector<text_row> &rows)
{
    for (const text_row &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.convert(QString::fromUtf8(row.input)), QString::fromUtf8(row.expected))
            << row.input;
    }
}

class date_conversion_test : public ::testing::Test
{
protected:
    void SetUp() override
    {
        library::set_essentials();
        QLocale::setDefault(QLocale(QStringLiteral("de_DE"))); // May is Mai, Dec is Dez
    }
    void TearDown() override { library::set_cancel_extraction(false); }
};

TEST_F(date_conversion_test, counts_of_seconds)
{
    constexpr auto apple = library::convert_apple_time_to_epoch;
    constexpr auto google = library::convert_google_time_to_epoch;
    constexpr auto readable = library::convert_timestamp_to_human_readable_in_UTC;
    constexpr auto duration = library::get_human_readable_time;
    expect_rows({
        {"apple: fraction dropped", apple, " 600000000.75 ", "1578307200"},
        {"apple: fraction of a negative dropped", apple, "-1.9", "978307199"},
        {"apple: zero is no time", apple, "0", nullptr},
        {"apple: blank is no time", apple, " \n", nullptr},
        {"apple: zero with a fraction is a time", apple, "0.5", "978307200"},
        {"apple: past 2038 by 32-bit addition", apple, "2147483647", "3125790847"},
        {"apple: over 32 bits reads as 0", apple, "2147483648", "978307200"},
        {"apple: least", apple, "-2147483648", "-1169176448"},
        {"google: microseconds since 1601", google, "13000000000000000", "1355526400"},
        {"google: epoch seconds stay", google, "1355526400", "1355526400"},
        {"google: any ten characters stay", google, "0123456 89", "0123456 89"},
        {"google: only the bare zero is no time", google, " 0", "-11644473600"},
        {"google: garbage", google, "x", "-11644473600"},
        {"google: before 1601 by wrapping", google, "18446744073709551615", "-11644473600"},
        {"google: most", google, "9223372036854775807", "9211727563254"},
        {"readable: epoch", readable, "0", "01-Jan-1970 00:00:00"},
        {"readable: English month", readable, "1589021112.9", "09-May-2020 10:45:12"},
        {"readable: before 1970", readable, "-2147483648", "13-Dec-1901 20:45:52"},
        {"readable: past 32 bits", readable, "2147483648", "01-Jan-1970 00:00:00"},
        {"duration: minutes", duration, "59", "00:59 Min"},
        {"duration: none", duration, "0", "00:00 Min"},
        {"duration: hours", duration, "3725", "01:02:05 Hrs"},
        {"duration: fraction", duration, "3600.9", "01:00:00 Hrs"},
        {"duration: negative", duration, "-5", nullptr},
        {"duration: many hours", duration, "2147483647", "596523:14:07 Hrs"},
    });
}

TEST_F(date_conversion_test, zone_offsets)
{
    const QMap<QString, int> offsets = {{"0530", 19800}, {"0000", 0},
                                        {"0545", 20700}, {"05", 18000},
                                        {"", 0},         {"xx30", 1800},
                                        {"99x", 356400}, {"002147483647", 0},
                                        {"-1-1", -3660}, {"0035791394", 2147483640}};
    for (auto offset = offsets.cbegin(); offset != offsets.cend(); ++offset)
        EXPECT_EQ(library::convert_timezone_to_seconds(offset.key()), offset.value())
            << qPrintable(offset.key());
}

TEST_F(date_conversion_test, wall_clock_texts)
{
    constexpr auto with_zone = library::convert_human_readable_to_epoch_1;
    constexpr auto with_offset = library::convert_human_readable_to_epoch_2;
    constexpr auto mail_like = library::convert_human_readable_to_epoch_3;
    constexpr auto t_z = library::convert_T_Z_time_to_epoch;
    expect_rows({
        {"1: afternoon", with_zone, "May 9, 2020, 4:15:12 PM UTC", "1589040912"},
        {"1: midnight is 12 AM", with_zone, "Jan 1, 1970, 12:00:00 AM UTC", "0"},
        {"1: noon is 12 PM", with_zone, "Jan 1, 1970, 12:00:00 PM UTC", "43200"},
        {"1: 13 PM is no time", with_zone, "May 9, 2020, 13:15:12 PM UTC", "0"},
        {"1: month of another language", with_zone, "Mai 9, 2020, 4:15:12 PM UTC", "0"},
        {"1: empty", with_zone, " ", nullptr},
        {"2: east is subtracted", with_offset, "2020-05-09 10:45:12 +0530", "1589001312"},
        {"2: west is added", with_offset, "2020-05-09 10:45:12-0330", "1589033712"},
        {"2: colon in the offset", with_offset, "2020-05-09 10:45:12+05:30", "1589001312"},
        {"2: fraction", with_offset, "2020-05-09 10:45:12.999 +0000", "1589021112"},
        {"2: fraction before 1970", with_offset, "1969-12-31 23:59:58.999 +0000", "-2"},
        {"2: leap day", with_offset, "2020-02-29 00:00:00 +0000", "1582934400"},
        {"2: no leap day in 1900", with_offset, "1900-02-29 00:00:00 +0000", "0"},
        {"2: skipped by St. John's", with_offset, "2020-03-08 02:30:00 +0000", "1583634600"},
        {"2: skipped by Apia", with_offset, "2011-12-30 10:00:00 +0000", "1325239200"},
        {"2: past 2038", with_offset, "2100-01-01 00:00:00 +0000", "4102444800"},
        {"2: last", with_offset, "9999-12-31 23:59:59 -0000", "253402300799"},
        {"2: first", with_offset, "0001-01-01 00:00:00", "-62135596800"},
        {"2: leap second is none", with_offset, "2016-12-31 23:59:60 +0000", "0"},
        {"2: garbage has no offset", with_offset, "no time +0100", "0"},
        {"3: mail date", mail_like, "Sat, 09 May 2020 10:45:12 GMT", "1589021112"},
        {"3: no blank behind the comma", mail_like, "Sat,09 May 2020 10:45:12 GMT", "1589021112"},
        {"3: offset is dropped", mail_like, "Sat, 09 MAY 2020 10:45:12 +0530", "1589021112"},
        {"3: needs something behind the time", mail_like, "Sat, 09 May 2020 10:45:12", "0"},
        {"3: day takes two digits", mail_like, "Sat, 9 May 2020 10:45:12 GMT", "0"},
        {"3: zero", mail_like, "0", nullptr},
        {"T: zulu", t_z, "2020-05-09T10:45:12Z", "1589021112"},
        {"T: fraction", t_z, "2020-05-09T10:45:12.5Z", "1589021112"},
        {"T: bare digits", t_z, "20200509T104512Z", "1589021112"},
        {"T: blank for T", t_z, "2020-05-09 10:45:12", "1589021112"},
        {"T: date only", t_z, "2011-12-30", "1325203200"},
        {"T: west", t_z, "2020-05-09T10:45:12-03:30", "1589033712"},
        {"T: minutes only is no time", t_z, "2020-05-09T10:45Z", "0"},
        {"T: arabic digits are none", t_z, "٢٠٢٠-05-09T10:45:12Z", "0"},
    });
}

TEST_F(date_conversion_test, metadata_dates)
{
    constexpr auto filter = library::get_filtered_date_value;
    expect_rows({
        {"printed date", filter, " 2020-05-09 10:45:12 +0000\n", "1589021112"},
        {"zone without blank", filter, "2020-05-09 10:45:12+0000", "1589021112"},
        {"no zone", filter, "2020-05-09T10:45:12", "1589021112"},
        {"skipped by St. John's", filter, "2020-03-08T02:30:00", "1583634600"},
        {"day skipped by Apia", filter, "2011-12-30", "1325203200"},
        {"toward zero before 1970", filter, "1969-12-31T23:59:58.500Z", "-1"},
        {"no date", filter, "no date at all", "0"},
        {"blank", filter, "  ", nullptr},
    });
    const auto parse = library::get_datetime_from_string_with_iso_date;
    EXPECT_EQ(parse(QStringLiteral("2020-05-09T10:45:12+0530")).toSecsSinceEpoch(), 1589001312);
    EXPECT_FALSE(parse(QStringLiteral("2020-05-09 x")).isValid());
    EXPECT_FALSE(parse(QString()).isValid());
}

struct local_row
{
    const char *zone;
    const char *name;
    const char *text; // in the form of convert_human_readable_to_epoch_1, but for the zone's name
    qint64 expected;
};

constexpr local_row local_rows[] = {
    {"UTC", "plain", "May 9, 2020, 4:15:12 PM", 1589040912},
    {"Asia/Kolkata", "plain", "May 9, 2020, 4:15:12 PM", 1589021112},
    {"America/St_Johns", "summer", "May 9, 2020, 4:15:12 PM", 1589049912},
    {"America/St_Johns", "gap", "Mar 8, 2020, 2:30:00 AM", 1583647200},
    {"America/St_Johns", "after the gap", "Mar 8, 2020, 3:00:00 AM", 1583645400},
    {"America/St_Johns", "overlap", "Nov 1, 2020, 1:30:00 AM", 1604203200},
    {"America/St_Johns", "past 2038", "Jul 1, 2050, 12:00:00 AM", 2540255400},
    {"Pacific/Apia", "skipped day", "Dec 30, 2011, 10:00:00 AM", 1325275200},
    {"Pacific/Apia", "day before", "Dec 29, 2011, 11:59:59 PM", 1325239199},
    {"Pacific/Apia", "day after", "Dec 31, 2011, 12:00:00 AM", 1325239200},
};

TEST_F(date_conversion_test, local_time_where_the_text_names_no_utc)
{
    const QByteArray zone = qgetenv("TZ");
    if (!zone.isEmpty() && !QTimeZone::isTimeZoneIdAvailable(zone))
        GTEST_SKIP() << "this machine has no data of the zone " << zone.constData();
    for (const local_row &row : local_rows) {
        if (zone != row.zone)
            continue;
        SCOPED_TRACE(row.name);
        const QString text = QString::fromLatin1(row.text);
        const QString expected = QString::number(row.expected);
        EXPECT_EQ(library::convert_human_readable_to_epoch_1(text), expected);
        EXPECT_EQ(library::convert_human_readable_to_epoch_1(text + " IST"), expected);
        const QDateTime wall =
            text::parse_wall_clock(text, QLatin1String("MMM d, yyyy, h:mm:ss AP"));
        const QString formatted = QLocale::c().toString(wall, "dd-MMM-yyyy,HH:mm:ss AP");
        EXPECT_EQ(text::epoch_from_formatted_local_date(formatted), row.expected);
    }
    EXPECT_EQ(text::epoch_from_formatted_local_date("09-May-2020,16:15:12 AM"), 0);
    EXPECT_EQ(library::convert_nsdate_to_epoch(nullptr, nullptr), 0);
}

class forged_item final : public platform::spotlight_item
{
public:
    std::optional<platform::attribute_description> attribute(const QString &name) const override
    {
        if (!texts.contains(name))
            return std::nullopt;
        const QString text = texts.value(name);
        return platform::attribute_description{text, has_c_string ? text : QString()};
    }
    QMap<QString, QString> texts;
    bool has_c_string = true;
};

TEST_F(date_conversion_test, used_dates_whatever_their_order)
{
    forged_item item;
    const auto used = [&item] {
        return extraction::used_dates_from(item, library::run_cancellation(), library::run_log());
    };
    EXPECT_TRUE(used().last_used_date.isNull());
    item.texts = {{"kMDItemLastUsedDate", "2020-05-09 10:45:12 +0000"},
                  {"kMDItemUsedDates", "(\n    \"2020-05-08 00:00:00 +0000\",\n"
                                       "    \"1969-12-31 23:59:59 +0000\",\n"
                                       "    \"2020-05-07 00:00:00 +0000\"\n)"}};
    const struct_used_date dates = used();
    EXPECT_EQ(dates.last_used_date, "1589021112");
    EXPECT_EQ(dates.used_dates, QStringList({"1588896000", "-1", "1588809600"}));
    EXPECT_EQ(dates.first_date, "-1");
    EXPECT_EQ(dates.last_date, "1588896000");

    library::set_cancel_extraction(true);
    EXPECT_TRUE(used().used_dates.isEmpty());
    EXPECT_TRUE(used().first_date.isNull());
    library::set_cancel_extraction(false);
    item.has_c_string = false;
    EXPECT_TRUE(used().last_used_date.isNull());
    item = forged_item();
    item.texts = {{"kMDItemUsedDates", "(\n)"}};
    EXPECT_TRUE(used().used_dates.isEmpty());
}

TEST_F(date_conversion_test, file_times_stay_inside_the_prefix)
{
    const forged_source files;
    const QString path = files.write("a", {});
    const timespec times[] = {{-2, 500000000}, {4102444800, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
    files.link("absolute", path);
    files.link("out", files.write("../outside", {}));
    const QString root = files.root().chopped(1);

    for (const char *name : {"/a", " /absolute "}) {
        const struct_posix_timestamp found = library::get_posix_timestamp(name, root);
        EXPECT_EQ(found.accessed, -1) << name;
        EXPECT_EQ(found.modified, 4102444800) << name;
    }
    for (const char *name : {"/out", "/missing", " "})
        EXPECT_EQ(library::get_posix_timestamp(name, root).modified, 0);
    EXPECT_EQ(library::get_posix_timestamp(path, QString()).modified, 0);
}

} // namespace
