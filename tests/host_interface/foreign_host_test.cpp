// Drives the built library as a host does that shares nothing with it but the interface.
#include "tests/fixtures/foreign_interface.h"
#include "tests/fixtures/printing.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLibrary>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace {

class foreign_host : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QLibrary library(QStringLiteral(CYBERDUCK_LIBRARY));
        auto *factory = reinterpret_cast<foreign::plugin *(*)()>(library.resolve("create_object"));
        ASSERT_NE(factory, nullptr) << qPrintable(library.errorString());
        plugin.reset(factory());
        ASSERT_NE(plugin, nullptr);
        records = std::make_unique<QSignalSpy>(
            plugin.get(), SIGNAL(signal_extracted_records_of_plugin_overall(qint64)));
        tabs = std::make_unique<QSignalSpy>(plugin.get(),
                                            SIGNAL(signal_tab_processed_of_plugin_overall(int)));
        ASSERT_TRUE(records->isValid() && tabs->isValid());
    }

    // Lines of the log since the last call, from the engine's name on.
    QStringList take_log()
    {
        QFile file(folder.filePath(QStringLiteral("log")));
        QStringList lines;
        if (!file.open(QIODevice::ReadOnly) || !file.seek(log_read))
            return lines;
        while (!file.atEnd())
            lines.append(QString::fromUtf8(file.readLine()).mid(22).trimmed());
        log_read = file.pos();
        return lines;
    }

    [[nodiscard]] QList<qint64> take_counts() const
    {
        QList<qint64> counts;
        for (const QVariantList &arguments : qAsConst(*records))
            counts.append(arguments.at(0).toLongLong());
        records->clear();
        return counts;
    }

    void set_up_source(const QString &scheme)
    {
        foreign::source source;
        source.path = folder.filePath(QStringLiteral("src/"));
        source.internal = scheme;
        source.accounts = {{QStringLiteral("alice"), QString()}};
        plugin->set_source_info(source);
    }

    QTemporaryDir folder;
    std::unique_ptr<foreign::plugin> plugin;
    std::unique_ptr<QSignalSpy> records;
    std::unique_ptr<QSignalSpy> tabs;
    qint64 log_read = 0;
};

TEST_F(foreign_host, every_slot_does_its_own_work)
{
    const QString result = folder.filePath(QStringLiteral("r/Artifacts_Result/Cyberduck/"));
    const QString database = result + QStringLiteral("Cyberduck.sqlite");
    const QString unknown = QStringLiteral(
        "------FAILED------- supported os scheme internal not matched, received os scheme internal "
        "=  amigaOS, plugin name is Cyberduck");

    plugin->set_engine_type(1);
    EXPECT_EQ(plugin->get_artifact_name(), QStringLiteral("Cyberduck"));
    plugin->set_essentials();
    plugin->set_source_count(3);
    plugin->set_ios_uid_backup_pointer(nullptr);
    plugin->set_desktop_info({});
    foreign::general general;
    general.debug = general.in_file = true;
    general.file = folder.filePath(QStringLiteral("log"));
    plugin->set_general_info(general);
    set_up_source(QStringLiteral("amigaOS"));
    plugin->find_source_file();
    // The essentials have reset the engine type.
    EXPECT_EQ(take_log(), QStringList("[ -----FAILED----- to find Engine Type ][-1][Artifacts "
                                      "Extraction][cyberduck::pub_find_source_file]:-- " +
                                      unknown));

    plugin->set_engine_type(1);
    plugin->set_essential_for_haldo_bench_extraction({QStringLiteral("preferences")},
                                                     {QStringLiteral("ignored")});
    plugin->set_result_directory(folder.filePath(QStringLiteral("r")));
    EXPECT_TRUE(QFileInfo(result + QStringLiteral("tmp")).isDir());
    EXPECT_FALSE(QFileInfo::exists(database));
    plugin->create_db_tables();
    EXPECT_TRUE(QFileInfo::exists(database));
    plugin->set_clear_db(true);
    plugin->set_extended_attributes_list({});
    set_up_source(QStringLiteral("macOS"));
    take_log();
    plugin->find_source_file();
    EXPECT_EQ(take_log().size(), 2);
    plugin->extract_artifacts();
    EXPECT_EQ(take_counts(), QList<qint64>({0, 0, 0}));
    EXPECT_EQ(tabs->size(), 1);
    EXPECT_EQ(take_log().constLast(), QStringLiteral("[HALDO_SWEEP][Artifacts Extraction]["
                                                     "cyberduck::pub_extract_artifacts]:-- "
                                                     "[pub_extract_artifacts] - END"));
    plugin->cancel_extraction();
    plugin->extract_artifacts();
    EXPECT_EQ(take_counts(), QList<qint64>({0}));
    EXPECT_EQ(take_log().size(), 1);
    plugin->generate_chat_html_pages();
    EXPECT_TRUE(QFileInfo::exists(result + QStringLiteral("tmp")));
    plugin->remove_temporary_asthetics();
    EXPECT_FALSE(QFileInfo::exists(result + QStringLiteral("tmp")));
    plugin->find_source_file();
    EXPECT_TRUE(take_log().isEmpty());
}

TEST_F(foreign_host, other_schemes_end_with_their_count_alone)
{
    plugin->set_engine_type(0);
    plugin->set_essential_for_haldo_bench_extraction({QStringLiteral("bookmarks")}, {});
    plugin->set_result_directory(folder.filePath(QStringLiteral("r")));
    for (const char *scheme : {"winOS", "iOS_UID"}) {
        SCOPED_TRACE(scheme);
        set_up_source(QLatin1String(scheme));
        plugin->find_source_file();
        plugin->extract_artifacts();
        EXPECT_EQ(take_counts(), QList<qint64>({0, 0, 0}));
    }
    set_up_source(QStringLiteral("macos"));
    plugin->extract_artifacts();
    EXPECT_EQ(take_counts(), QList<qint64>({0, 0}));
    EXPECT_TRUE(tabs->isEmpty());
}

} // namespace
