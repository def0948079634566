// What an extraction costs, step by step and as a whole, over generated lists: microseconds per
// list read, per row inserted and per list end to end.
#include "macos/bookmarks_extractor.h"
#include "macos/cyberduck_macos.h"
#include "macos/history_extractor.h"
#include "macos/preferences_extractor.h"
#include "macos/preferences_table.h"
#include "platform/property_list.h"
#include "plugin/cyberduck.h"
#include "support/plugin_static_function.h"

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

constexpr int list_count = 20000;
constexpr int preference_keys = 2000;

const QString user = QStringLiteral("alice");

QByteArray text_entry(const char *key, const QByteArray &value)
{
    return QByteArray("\t<key>") + key + "</key>\n\t<string>" + value + "</string>\n";
}

// About 1.3 KB, as the client writes them.
QByteArray connection_list(int number)
{
    const QByteArray digits = QByteArray::number(number);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist>\n<dict>\n" +
           text_entry("Protocol", "sftp") + text_entry("Provider", "iterate GmbH") +
           text_entry("Nickname", "Server number " + digits) +
           text_entry("UUID", "1d3c2b6a-7d1e-4f2f-9c0a-" + digits.rightJustified(12, '0')) +
           text_entry("Hostname", "host" + digits + ".example.org") + text_entry("Port", "22") +
           text_entry("Username", "alice") + text_entry("Path", "/home/alice/project " + digits) +
           text_entry("Access Timestamp", "1589021112345") +
           text_entry("Comment", QByteArray(400, 'c')) +
           "\t<key>Download Folder Dictionary</key>\n\t<dict>\n" +
           text_entry("Path", "~/Downloads") + "\t</dict>\n" +
           "\t<key>Upload Folder Dictionary</key>\n\t<dict>\n" + text_entry("Path", "~/Desktop") +
           "\t</dict>\n" + "</dict>\n</plist>\n";
}

QByteArray preferences_list()
{
    QByteArray list =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n";
    for (const macos::preference &entry : macos::preferences())
        list += text_entry(entry.key, "true");
    for (int i = 0; i < preference_keys; ++i)
        list += text_entry("some.other.preference." + QByteArray::number(i), "value");
    return list + "</dict>\n</plist>\n";
}

// One source for all measurements, made once.
class generated_source
{
public:
    generated_source()
    {
        const QString home = root() + QStringLiteral("Users/alice/Library/");
        const QString data = home + QStringLiteral("Application Support/Cyberduck/");
        for (const char *folder : {"Bookmarks/", "History/"}) {
            QDir().mkpath(data + QLatin1String(folder));
            for (int i = 0; i < list_count; ++i)
                write(data + QLatin1String(folder) + QString::number(i) + QStringLiteral(".duck"),
                      connection_list(i));
        }
        QDir().mkpath(home + QStringLiteral("Preferences"));
        write(preferences(), preferences_list());
        frame_.pub_set_engine_type(0);
        frame_.pub_set_source_info(info());
        frame_.pub_set_result_directory(folder_.filePath(QStringLiteral("result")));
        frame_.pub_create_db_tables();
    }

    [[nodiscard]] QString root() const { return folder_.filePath(QStringLiteral("source/")); }
    [[nodiscard]] QString bookmarks() const
    {
        return root() +
               QStringLiteral("Users/alice/Library/Application Support/Cyberduck/Bookmarks/");
    }
    [[nodiscard]] QString preferences() const
    {
        return root() + QStringLiteral("Users/alice/Library/Preferences/ch.sudo.cyberduck.plist");
    }
    [[nodiscard]] QString database() const
    {
        return folder_.filePath(
            QStringLiteral("result/Artifacts_Result/Cyberduck/Cyberduck.sqlite"));
    }
    [[nodiscard]] struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info info() const
    {
        struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info source;
        source.fs_extraction_source_path = root();
        source.source_type_internal = QStringLiteral("macOS_Image");
        source.os_scheme_internal = QStringLiteral("macOS");
        source.system_account_QList = {{user, QString()}};
        return source;
    }
    void set_up(cyberduck_macos *adapter) const
    {
        adapter->macos_set_source_info(info());
        adapter->macos_set_destination_location({}, {}, database());
        adapter->macos_find_artifacts_source();
    }
    void empty(const char *table) const
    {
        plugin_static_function::execute_db_command_by_dbpath(
            QStringLiteral("delete from ") + QLatin1String(table), database(), QString());
    }

private:
    static void write(const QString &path, const QByteArray &content)
    {
        QFile file(path);
        if (file.open(QIODevice::WriteOnly))
            file.write(content);
    }

    QTemporaryDir folder_;
    cyberduck frame_;
};

const generated_source &source()
{
    static const generated_source made;
    return made;
}

void report_each(benchmark::State &state, const char *name, double count)
{
    state.counters[name] = benchmark::Counter(count, benchmark::Counter::kIsIterationInvariantRate |
                                                         benchmark::Counter::kInvert);
}

void read_lists(benchmark::State &state)
{
    QStringList paths;
    QDirIterator files(source().bookmarks(), QDir::Files);
    while (files.hasNext())
        paths.append(files.next());
    platform::property_list list;
    for (auto _ : state) {
        for (const QString &path : qAsConst(paths)) {
            if (!list.load(path))
                state.SkipWithError("a generated list was not read");
            benchmark::DoNotOptimize(list.root());
        }
    }
    report_each(state, "per_list", list_count);
}

void insert_rows(benchmark::State &state)
{
    macos::bookmark_row row;
    for (const auto &column : macos::bookmark_columns)
        row.*column.field = QStringLiteral("a text of some length");
    row.comment = QString(400, QLatin1Char('c'));
    for (auto _ : state) {
        source().empty("bookmarks");
        macos::result_connection connection(QStringLiteral("benchmark"), source().database());
        connection.open();
        macos::insert_statement statement(connection, macos::bookmarks_profile.statement);
        for (int i = 0; i < list_count; ++i) {
            if (!statement.insert_row(macos::bookmark_columns, row))
                state.SkipWithError("a row was not inserted");
        }
    }
    report_each(state, "per_row", list_count);
}

void extract(benchmark::State &state, const char *table, void (cyberduck_macos::*extractor)())
{
    cyberduck_macos adapter;
    source().set_up(&adapter);
    for (auto _ : state) {
        state.PauseTiming();
        source().empty(table);
        state.ResumeTiming();
        (adapter.*extractor)();
    }
    report_each(state, "per_list", list_count);
}

void extract_bookmarks(benchmark::State &state)
{
    extract(state, "bookmarks", &cyberduck_macos::xcode_extract_bookmarks);
}

void extract_history(benchmark::State &state)
{
    extract(state, "history", &cyberduck_macos::xcode_extract_history);
}

void extract_preferences(benchmark::State &state)
{
    cyberduck_macos adapter;
    source().set_up(&adapter);
    for (auto _ : state)
        adapter.xcode_extract_preferences(source().preferences(), user);
    source().empty("preferences");
    report_each(state, "per_file", 1);
}

BENCHMARK(read_lists)->Unit(benchmark::kMillisecond);
BENCHMARK(insert_rows)->Unit(benchmark::kMillisecond);
BENCHMARK(extract_bookmarks)->Unit(benchmark::kMillisecond);
BENCHMARK(extract_history)->Unit(benchmark::kMillisecond);
BENCHMARK(extract_preferences)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
