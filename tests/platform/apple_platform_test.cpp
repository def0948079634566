// What only the Apple platform can do wrong: keep objects, and let exceptions through.
#include "platform/property_list.h"
#include "platform/spotlight_item.h"
#include "host_interface/library/plugin_static_function.h"
#include "tests/apple_frameworks/stand_in_control.h"
#include "tests/fixtures/platform_contract.h"
#include "tests/fixtures/held_place.h"
#include "tests/fixtures/printing.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class apple_platform : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(list_bytes);
        file.close();
        fixture->give_attribute(path, name, QStringLiteral("a \u00e9"));
        fixture->give_position(path, {1.5, QStringLiteral("N"), 2.5, QStringLiteral("E")});
    }

    // One question of each kind; what comes of them, without an answer where there is none. No pool
    // but the platform's own is drained in between.
    QStringList ask_everything() { return list_answers() + metadata_answers() + object_answers(); }

    const QByteArray list_bytes =
        "<plist><dict><key>a</key><string>b</string><key>c</key><array>"
        "<real>2.5</real><date>2001-01-01T00:00:01Z</date></array></dict></plist>";
    QTemporaryDir folder;
    const QString path =
        QFileInfo(folder.path()).canonicalFilePath() + QStringLiteral("/list and image");
    const QString name = QStringLiteral("kMDItemComment");
    std::unique_ptr<contract_fixture> fixture = make_contract_fixture();
    NSDate *const date = fixture->date(1589021112.75);
    const __CFString *const text = fixture->cfstring(name);
    void *const key = fixture->key(QStringLiteral("a"));
    void *const dictionary = fixture->dictionary(list_bytes);

private:
    QStringList list_answers()
    {
        platform::property_list list;
        QStringList answers;
        for (const bool is_file : {true, false}) {
            answers += QString::number(is_file ? list.load(path) : list.load_bytes(list_bytes));
            const platform::release_pool pool; // the caller's, for the values
            const auto array = list.root().value(QStringLiteral("c"));
            answers += {list.root().value(QStringLiteral("a")).text(),
                        QString::number(array.count()),
                        array.at(0).class_name(),
                        QString::number(array.at(0).double_value()),
                        QString::number(array.at(0).is_floating()),
                        QString::number(array.at(0).integer_value()),
                        QString::number(array.at(1).seconds_since_reference_date())};
        }
        return answers;
    }
    QStringList metadata_answers() const
    {
        const auto catalog = platform::make_spotlight_catalog(folder.path() + QLatin1Char('/'));
        const auto item = catalog->item(held_place(path));
        const auto found = item ? item->attribute(name) : std::nullopt;
        const formats::gps_position position = platform::read_gps_position(held_place(path));
        return {QString::number(item != nullptr), found ? found->text : QString(),
                QString::number(position.latitude.value_or(0)), position.latitude_reference};
    }
    QStringList object_answers()
    {
        return {plugin_static_function::convert_cfstring_to_qstring(text),
                plugin_static_function::get_nsstring_values(key, dictionary),
                QString::number(plugin_static_function::convert_nsdate_to_epoch(
                    date, fixture->object_of(date)))};
    }
};

TEST_F(apple_platform, releases_what_it_was_given)
{
    const QStringList answers = ask_everything();
    EXPECT_EQ(stand_ins::faults(), QStringList());
    int living = 0;
    for (int turn = 0; turn < 10; ++turn) {
        EXPECT_EQ(ask_everything(), answers);
        {
            const platform::release_pool pool;
            void *short_lived = fixture->dictionary(list_bytes);
            EXPECT_FALSE(plugin_static_function::get_nsstring_values(key, short_lived).isNull());
        }
        if (turn == 1) // caches are filled now
            living = stand_ins::living_objects();
    }
    EXPECT_EQ(stand_ins::living_objects(), living);
}

TEST_F(apple_platform, an_exception_costs_one_answer)
{
    const QStringList answers = ask_everything();
    const std::vector<std::string> functions = stand_ins::called_functions();
    ASSERT_GE(functions.size(), 12u);
    ask_everything();
    const int living = stand_ins::living_objects();
    for (const std::string &function : functions) {
        SCOPED_TRACE(function);
        stand_ins::raise_in(function);
        EXPECT_NE(ask_everything(), answers);
        stand_ins::raise_in({});
        EXPECT_EQ(ask_everything(), answers);
        EXPECT_EQ(stand_ins::faults(), QStringList());
        EXPECT_EQ(stand_ins::living_objects(), living);
    }
}

} // namespace
