#include "host_interface/library/plugin_helper_functions.h"

#include "samples/forged_source.h"
#include "text/media/media_extensions.h"
#include "host_interface/library/plugin_static_function.h"
#include "tests/fixtures/printing.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

#include <vector>

namespace {

class plugin_helper_functions_test : public ::testing::Test
{
protected:
    plugin_helper_functions_test()
    {
        plugin_static_function::set_essentials();
        helper.set_adhoc_parent_path(copies);
    }
    ~plugin_helper_functions_test() override
    {
        plugin_static_function::set_cancel_extraction(false);
    }

    static QByteArray read(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }
    [[nodiscard]] QStringList copied() const
    {
        return QDir(copies).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    forged_source files;
    QString source = files.root();
    QString copies = files.outside(QStringLiteral("result/tmp/"));
    plugin_helper_functions helper{nullptr};
};

template <size_t count>
void check_list(const text::extension_text (&extensions)[count], int distinct_count)
{
    const QRegularExpression form(QStringLiteral("^\\.[a-z0-9][a-z0-9-]*$"));
    QSet<QString> distinct;
    for (const char *text : extensions) {
        EXPECT_TRUE(form.match(QLatin1String(text)).hasMatch()) << text;
        distinct.insert(QLatin1String(text));
    }
    EXPECT_EQ(distinct.size(), distinct_count);
}

TEST_F(plugin_helper_functions_test, lists_hold_well_formed_extensions)
{
    check_list(text::image_extensions, 548);
    check_list(text::audio_extensions, 545);
    check_list(text::video_extensions, 133);
}

TEST_F(plugin_helper_functions_test, classifies_by_the_last_suffix)
{
    const struct
    {
        const char *kinds; // i: image, a: sound, v: video
        std::vector<const char *> names;
    } rows[] = {
        {"i",
         {"Photo.JPG", " photo.png\n", ".gif", "track.001", "x.accountpicture-ms", "x.\u212adc"}},
        {"v", {"film.MP4", "tape.dv-avi", "a.png.264"}},
        {"av", {"song.mp3", "song.M4A\t"}},
        {"a", {"track.669"}},
        {"",
         {"archive.jpg.zip", "photo.jpg.", "photo.jpg..", "photo.jpg. ", "..", "", " \t", "jpg"}},
        {"", {"2019.04.heic", "film.wmv", "x.jp", "x.jpgx", "x.-jpg", "x.j pg", "folder.jpg/name"}},
        {"", {"x.\u00e9jpg", "x.\u0663fr"}}, // a letter and a digit, but none of ASCII
    };
    for (const auto &row : rows) {
        for (const char *text : row.names) {
            const QString name = QString::fromUtf8(text);
            QByteArray kinds;
            kinds += helper.check_is_image_by_extn(name) ? "i" : "";
            kinds += helper.check_is_audio_by_extn(name) ? "a" : "";
            kinds += helper.check_is_video_by_extn(name) ? "v" : "";
            EXPECT_EQ(kinds, row.kinds) << text;
        }
    }
}

TEST_F(plugin_helper_functions_test, finds_nothing_while_cancelled)
{
    helper.set_cancel_extraction(true);
    EXPECT_FALSE(helper.check_is_image_by_extn(QStringLiteral("a.jpg")));
    EXPECT_FALSE(helper.check_is_audio_by_extn(QStringLiteral("a.mp3")));
    EXPECT_FALSE(helper.check_is_video_by_extn(QStringLiteral("a.mp3")));
    helper.set_essentials();
    EXPECT_TRUE(helper.check_is_image_by_extn(QStringLiteral("a.jpg")));
}

TEST_F(plugin_helper_functions_test, copies_a_database_with_the_companions_that_it_has)
{
    files.write(QStringLiteral("x.db"), "pages");
    files.write(QStringLiteral("x.db-wal"), "log");
    files.write(QStringLiteral("../result/tmp/x.db-shm"), "another database's");
    EXPECT_EQ(helper.get_adhoc_path_for_database(source + QStringLiteral("x.db")),
              copies + QStringLiteral("x.db"));
    EXPECT_EQ(copied(), QStringList({QStringLiteral("x.db"), QStringLiteral("x.db-wal")}));
    EXPECT_EQ(read(copies + QStringLiteral("x.db")), "pages");
    EXPECT_EQ(read(copies + QStringLiteral("x.db-wal")), "log");
}

TEST_F(plugin_helper_functions_test, takes_another_name_when_one_is_in_use)
{
    files.write(QStringLiteral("x.db"), QByteArray(700000, 'n'));
    files.write(QStringLiteral("x.db-wal"), "log");
    files.write(QStringLiteral("../result/tmp/x.db"), "old");
    EXPECT_EQ(helper.get_adhoc_path_for_regular_file(source + QStringLiteral("x.db")),
              copies + QStringLiteral("1_x.db"));
    EXPECT_EQ(read(copies + QStringLiteral("1_x.db")), QByteArray(700000, 'n'));
    EXPECT_EQ(copied().size(), 2) << "a regular file has no companions";
    EXPECT_EQ(helper.get_adhoc_path_for_database(source + QStringLiteral("x.db")),
              copies + QStringLiteral("2_x.db"));
    EXPECT_EQ(read(copies + QStringLiteral("2_x.db-wal")), "log");
    EXPECT_EQ(read(copies + QStringLiteral("x.db")), "old");
}

TEST_F(plugin_helper_functions_test, copies_nothing_when_cancelled_or_without_a_folder)
{
    files.write(QStringLiteral("x.db"), "pages");
    files.write(QStringLiteral("x.db-wal"), "log");
    EXPECT_EQ(helper.get_adhoc_path_for_database(QStringLiteral(" \n")), QString());
    plugin_static_function::set_cancel_extraction(true);
    EXPECT_EQ(helper.get_adhoc_path_for_database(source + QStringLiteral("x.db")), copies);
    EXPECT_EQ(helper.get_adhoc_path_for_regular_file(source + QStringLiteral("x.db")), copies);
    EXPECT_TRUE(copied().isEmpty());
    EXPECT_TRUE(QDir(copies).exists());
    plugin_static_function::set_cancel_extraction(false);
    helper.set_adhoc_parent_path(QString());
    EXPECT_EQ(helper.get_adhoc_path_for_database(source + QStringLiteral("x.db")), QString());
    EXPECT_FALSE(QFile::exists(QStringLiteral("x.db")));
}

TEST_F(plugin_helper_functions_test, copies_no_link_fifo_or_missing_file)
{
    files.link(QStringLiteral("link"), files.write(QStringLiteral("../outside"), "secret"));
    files.fifo(QStringLiteral("fifo"));
    for (const QString &name : {QStringLiteral("link"), QStringLiteral("fifo"),
                                QStringLiteral("missing"), QStringLiteral("..")}) {
        helper.get_adhoc_path_for_regular_file(source + name);
        helper.get_adhoc_path_for_database(source + name);
        EXPECT_TRUE(copied().isEmpty()) << name.toStdString();
    }
    EXPECT_TRUE(QDir(source).exists());
}

} // namespace
