#include "source_builder.h"

#include "printing.h"
#include "support/plugin_static_function.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>

#include <gtest/gtest.h>

#include <unistd.h>

const char older_bookmarks[] = "/Library/Application Support/Cyberduck/Bookmarks/";
const char older_history[] = "/Library/Application Support/Cyberduck/History/";
const char older_transfers[] = "/Library/Application Support/Cyberduck/Transfers/";
const char container_bookmarks[] =
    "/Library/Group Containers/G69SCX94XU.duck/Library/Application Support/duck/Bookmarks/";
const char preferences_path[] = "/Library/Preferences/ch.sudo.cyberduck.plist";

QByteArray xml_dictionary(const QByteArray &content)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>" + content +
           "</dict>\n</plist>\n";
}

QByteArray text_entry(const char *key, const char *value)
{
    return QByteArray("<key>") + key + "</key><string>" + value + "</string>";
}

source_builder::source_builder()
    : root_(folder_.filePath(QStringLiteral("source/")))
    , result_(folder_.filePath(QStringLiteral("result")))
{
    EXPECT_TRUE(QDir().mkpath(root_ + QStringLiteral("Users")));
    EXPECT_TRUE(QDir().mkpath(result_));
}

QString source_builder::database() const
{
    return result_ + QStringLiteral("/Artifacts_Result/Cyberduck/Cyberduck.sqlite");
}

QString source_builder::write(const QString &path, const QByteArray &content) const
{
    QFile file(root_ + path);
    EXPECT_TRUE(QDir().mkpath(QFileInfo(file).path()));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write(content), content.size());
    return file.fileName();
}

QString source_builder::make_folder(const QString &path) const
{
    EXPECT_TRUE(QDir().mkpath(root_ + path));
    return root_ + path;
}

void source_builder::link(const QString &path, const QString &target) const
{
    EXPECT_TRUE(QDir().mkpath(QFileInfo(root_ + path).path()));
    EXPECT_EQ(::symlink(QFile::encodeName(target), QFile::encodeName(root_ + path)), 0);
}

struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info
source_builder::source_info(const QStringList &users, const QString &source_type) const
{
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info info;
    info.fs_extraction_source_path = root_;
    info.source_type_internal = source_type;
    info.os_scheme_display = QStringLiteral("macOS");
    info.os_scheme_internal = QStringLiteral("macOS");
    for (const QString &user : users)
        info.system_account_QList.append({user, QString()});
    return info;
}

std::unique_ptr<cyberduck> source_builder::frame(const QStringList &users,
                                                 const QString &source_type) const
{
    auto made = std::make_unique<cyberduck>();
    made->pub_set_engine_type(0);
    made->pub_set_source_count(1);
    made->pub_set_source_info(source_info(users, source_type));
    made->pub_set_essential_for_haldo_bench_extraction(
        {QStringLiteral("bookmarks"), QStringLiteral("history"), QStringLiteral("transfers"),
         QStringLiteral("preferences")},
        {});
    made->pub_set_extended_attributes_list({});
    made->pub_set_result_directory(result_);
    made->pub_create_db_tables();
    made->pub_find_source_file();
    return made;
}

std::unique_ptr<cyberduck_macos> source_builder::adapter(const QStringList &users) const
{
    const auto tables = frame(users);
    auto made = std::make_unique<cyberduck_macos>();
    made->macos_set_engine_type(0);
    made->macos_set_source_info(source_info(users, QStringLiteral("macOS_Image")));
    made->macos_set_destination_location(result_, result_, database());
    made->macos_find_artifacts_source();
    return made;
}

QList<QVariantMap> source_builder::rows(const QString &table) const
{
    QList<QVariantMap> found;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"),
                                                    QStringLiteral("source_builder::rows"));
        db.setDatabaseName(database());
        EXPECT_TRUE(db.open());
        QSqlQuery query(QStringLiteral("select * from %1 order by INT").arg(table), db);
        while (query.next()) {
            QVariantMap row;
            const QSqlRecord record = query.record();
            for (int i = 0; i < record.count(); ++i)
                row.insert(record.fieldName(i), record.isNull(i) ? QVariant() : record.value(i));
            found.append(row);
        }
    }
    QSqlDatabase::removeDatabase(QStringLiteral("source_builder::rows"));
    return found;
}

void source_builder::execute(const QString &statement) const
{
    EXPECT_TRUE(plugin_static_function::execute_db_command_by_dbpath(
        statement, database(), QStringLiteral("source_builder::execute")))
        << statement.toStdString();
}
