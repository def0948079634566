#include "samples/forged_source.h"
#include "tests/fixtures/log_capture.h"
#include "host_interface/library/plugin_static_function.h"
#include "tests/fixtures/printing.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace {

const QString home = QStringLiteral("macOS_Home_Directory");
const QString image = QStringLiteral("macOS_Image");
const QString alice = QStringLiteral("alice");

TEST(source_paths, paths_of_a_row)
{
    const struct
    {
        const char *name;
        QString path;
        QString source_type;
        QString relative;
        QString source_file;
        QString relation;
    } rows[] = {
        {"image keeps the path", "/Users/alice/a", image, "/Users/alice/a", "/Users/alice/a", {}},
        {"image adds the slash", "Users/alice/a", image, "/Users/alice/a", "/Users/alice/a", {}},
        {"home is cut behind the user", "/Users/alice/L/x.duck", home, "/L/x.duck", "/L/x.duck",
         "/Users/alice/L/x.duck"},
        {"home cuts at the first find", "/alice/Users/alice/a", home, "/Users/alice/a",
         "/Users/alice/a", "/alice/Users/alice/a"},
        {"home without the user", "/Users/bob/a", home, "/Users/bob/a", "/Users/bob/a",
         "/Users/bob/a"},
        {"blank stays", "  ", image, "  ", "  ", {}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(plugin_static_function::get_relative_file_path(row.path, alice, row.source_type),
                  row.relative);
        const auto files = plugin_static_function::get_final_artifact_source_file(row.path, alice,
                                                                                  row.source_type);
        EXPECT_EQ(files.first, row.source_file);
        EXPECT_EQ(files.second, row.relation);
        EXPECT_EQ(files.second.isNull(), row.relation.isNull());
    }
    EXPECT_TRUE(plugin_static_function::get_relative_file_path({}, alice, home).isNull());
}

TEST(source_paths, complete_path_names_the_user_again)
{
    const auto complete = [](const char *path, const QString &type) {
        return plugin_static_function::get_complete_file_path(QLatin1String(path), alice, type);
    };
    EXPECT_EQ(complete("/Users/bob/Documents/a", home), QStringLiteral("/Users/alice/Documents/a"));
    EXPECT_EQ(complete("/Users/bob", home), QStringLiteral("/Users/alice"));
    EXPECT_EQ(complete("/Users/bob/a", image), QStringLiteral("/Users/bob/a"));
    EXPECT_EQ(complete("Library/a", home), QStringLiteral("/Library/a"));
}

TEST(source_paths, user_of_a_path)
{
    const QString root = QStringLiteral("/mnt/src/");
    const QString file = root + QStringLiteral("Users/alice/Library/x");
    using pair = QPair<QString, QString>;
    plugin_static_function::set_essentials();
    EXPECT_EQ(plugin_static_function::extract_user_name_from_sourcefile(file, root), pair());
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info info;
    info.system_account_QList = {{QStringLiteral("bob"), {}}, {alice, QStringLiteral("CORP\\a")}};
    plugin_static_function::set_source_info(info);
    EXPECT_EQ(plugin_static_function::extract_user_name_from_sourcefile(file, root),
              pair(alice, QStringLiteral("CORP\\a")));
    EXPECT_EQ(plugin_static_function::extract_user_name_from_sourcefile(
                  root + QStringLiteral("Users/eve/x"), root),
              pair(QStringLiteral("eve"), QString()));
    EXPECT_EQ(plugin_static_function::extract_user_name_from_sourcefile(
                  root + QStringLiteral("Users"), root),
              pair());
    plugin_static_function::set_essentials();
}

class result_files : public ::testing::Test
{
protected:
    void SetUp() override { plugin_static_function::set_essentials(); }
    void TearDown() override { plugin_static_function::set_essentials(); }

    [[nodiscard]] QString at(const char *name) const { return files.root() + name; }

    forged_source files;
};

TEST_F(result_files, available_name_gets_a_number_in_front)
{
    const auto available = [this](const char *path) {
        return plugin_static_function::get_available_file(QLatin1String(path), files.root(), {});
    };
    EXPECT_EQ(available("/x/report.txt"), QStringLiteral("report.txt"));
    files.write("report.txt", "kept");
    files.write("1_report.txt", "kept");
    files.write(".hidden", "kept");
    EXPECT_EQ(available("/x/report.txt"), QStringLiteral("2_report.txt"));
    EXPECT_EQ(available("/x/.hidden"), QStringLiteral("1_.hidden"));
    plugin_static_function::set_cancel_extraction(true);
    EXPECT_TRUE(available("/x/report.txt").isNull());
}

TEST_F(result_files, removing_a_folder_never_follows_a_link)
{
    files.write("kept.txt", "kept");
    files.make_folder("tmp/a/b");
    files.link("tmp/a/up", files.root());
    files.link("away", files.root());
    files.write("tmp/a/.hidden", "kept");
    for (const char *name : {"away/", "missing", "tmp/"})
        plugin_static_function::remove_directory(at(name));
    const QString working_folder = QDir::currentPath();
    QDir::setCurrent(files.root());
    plugin_static_function::remove_directory(QString());
    QDir::setCurrent(working_folder);
    EXPECT_FALSE(QFileInfo::exists(at("tmp")));
    EXPECT_TRUE(QFileInfo::exists(at("kept.txt")));
}

TEST_F(result_files, copying_a_folder_takes_files_and_tells_failures)
{
    files.make_folder("from/sub");
    files.write("from/a", "kept");
    files.write("from/sub/.b", "kept");
    files.link("from/link", "/etc/hostname");
    log_capture log;
    plugin_static_function::copy_directory(at("from"), at("from/sub/to"));
    EXPECT_TRUE(QFileInfo::exists(at("from/sub/to/a")));
    EXPECT_TRUE(QFileInfo::exists(at("from/sub/to/sub/.b")));
    EXPECT_FALSE(QFileInfo::exists(at("from/sub/to/link")));
    plugin_static_function::copy_directory(QStringLiteral("/missing"), files.root());
    EXPECT_EQ(log.take_messages(),
              QStringList(QStringLiteral("[copy_directory] source diectory does not exist "
                                         "----FAILED---- :/missing")));
}

} // namespace
