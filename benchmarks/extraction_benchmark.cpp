// Measures each step of an extraction for one list or row, and each extractor as a whole, in
// microseconds.
#include "generated_source.h"
#include "extraction/bookmarks.h"
#include "host_interface/adapters/cyberduck_macos.h"
#include "platform/property_list.h"
#include "evidence/files/evidence_file.h"
#include "evidence/folders/folder_walk.h"
#include "samples/binary_list_builder.h"

#include <QApplication>
#include <QElapsedTimer>

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr int list_count = 20000;
constexpr int other_preferences = 2000;
constexpr qint64 largest_read_bytes = 1 << 20;

// One source serves all measurements.
const generated_source &source()
{
    static const std::unique_ptr<generated_source> made = [] {
        auto fresh = std::make_unique<generated_source>();
        fresh->write_connections(bookmarks_table, list_count);
        fresh->write_connections(history_table, list_count);
        fresh->write_preferences(other_preferences);
        return fresh;
    }();
    return *made;
}

void set_up(cyberduck_macos *adapter)
{
    adapter->macos_set_source_info(source().info());
    adapter->macos_set_destination_location({}, {}, source().database());
    adapter->macos_find_artifacts_source();
}

void report_each(benchmark::State &state, const char *name, double count)
{
    state.counters[name] = benchmark::Counter(count, benchmark::Counter::kIsIterationInvariantRate |
                                                         benchmark::Counter::kInvert);
}

template <typename Step> void walk_and(benchmark::State &state, Step step)
{
    const QString folder = source().lists_of(bookmarks_table);
    for (auto _ : state) {
        evidence::folder_walk walk(folder, folder);
        while (walk.next())
            step(walk);
    }
    report_each(state, "per_list", list_count);
}

void walk_folder(benchmark::State &state)
{
    walk_and(state, [](const evidence::folder_walk &walk) {
        benchmark::DoNotOptimize(walk.name().constData());
    });
}

void walk_and_stat(benchmark::State &state)
{
    walk_and(state, [](const evidence::folder_walk &walk) {
        struct stat status = {};
        ::fstatat(walk.folder_descriptor(), walk.name().constData(), &status, AT_SYMLINK_NOFOLLOW);
        benchmark::DoNotOptimize(status);
    });
}

void walk_and_read(benchmark::State &state)
{
    evidence::evidence_file file;
    QByteArray bytes;
    walk_and(state, [&](const evidence::folder_walk &walk) {
        if (!file.open_listed(walk.folder_descriptor(), walk.name().constData()) ||
            !file.read_all(&bytes, largest_read_bytes))
            state.SkipWithError("a generated list was not read");
    });
}

void parse(benchmark::State &state, const QByteArray &bytes)
{
    platform::property_list list;
    for (auto _ : state) {
        if (!list.load_bytes(bytes))
            state.SkipWithError("a generated list was not parsed");
        benchmark::DoNotOptimize(list.root());
    }
}

void parse_xml(benchmark::State &state)
{
    parse(state, connection_list(1));
}

// The texts of an XML list's top dictionary.
QByteArray as_binary(const QByteArray &xml)
{
    binary_list_builder builder;
    std::vector<std::pair<int, int>> entries;
    platform::property_list list;
    list.load_bytes(xml);
    for (const char *key : {"Protocol", "Provider", "Nickname", "UUID", "Hostname", "Port",
                            "Username", "Path", "Access Timestamp", "Comment"}) {
        const QByteArray text = list.root().value(QLatin1String(key)).text().toLatin1();
        const int key_index = builder.text(key);
        entries.emplace_back(key_index, builder.text(text.constData()));
    }
    return builder.list(quint64(builder.dictionary(entries)));
}

void parse_binary(benchmark::State &state)
{
    parse(state, as_binary(connection_list(1)));
}

// Includes parsing: a list that was read before has its keys sorted already.
void read_row(benchmark::State &state, const QByteArray &bytes)
{
    const extraction::path_mapper paths(source().root(), QStringLiteral("macOS_Image"));
    platform::property_list list;
    for (auto _ : state) {
        list.load_bytes(bytes);
        benchmark::DoNotOptimize(extraction::read_bookmark(
            {QString(), QStringLiteral("alice"), list.root(), {}}, paths));
    }
}

void read_row_of_xml(benchmark::State &state)
{
    read_row(state, connection_list(1));
}

void read_row_of_binary(benchmark::State &state)
{
    read_row(state, as_binary(connection_list(1)));
}

// The texts of a bookmark that go from the list to the row as they are.
const std::vector<QByteArray> &passing_texts()
{
    static const std::vector<QByteArray> texts = {"/home/alice/project 123",
                                                  "Server number 123",
                                                  "sftp",
                                                  "1d3c2b6a-7d1e-4f2f-9c0a-000000000123",
                                                  "host123.example.org",
                                                  "22",
                                                  "alice",
                                                  QByteArray(400, 'c')};
    return texts;
}

// What it costs that they are UTF-16 between the list and the row.
void pass_texts_as_utf16(benchmark::State &state)
{
    for (auto _ : state) {
        for (const QByteArray &text : passing_texts())
            benchmark::DoNotOptimize(QString::fromUtf8(text).trimmed().toUtf8());
    }
}

// The least that it would cost without: a look whether they are ASCII and trimmed, and a copy.
void pass_texts_as_bytes(benchmark::State &state)
{
    for (auto _ : state) {
        for (const QByteArray &text : passing_texts()) {
            char all_bits = 0;
            for (const char byte : text)
                all_bits |= byte;
            benchmark::DoNotOptimize(all_bits >= 0 && text.front() > ' ' && text.back() > ' ');
            benchmark::DoNotOptimize(QByteArray(text.constData(), text.size()));
        }
    }
}

void map_path(benchmark::State &state)
{
    const extraction::path_mapper paths(source().root(), QStringLiteral("macOS_Image"));
    const QString path = source().lists_of(bookmarks_table) + QStringLiteral("12345.duck");
    for (auto _ : state)
        benchmark::DoNotOptimize(paths.source_files(path, QStringLiteral("alice")));
}

std::vector<extraction::bookmark_row> two_rows()
{
    extraction::bookmark_row row;
    for (const auto &column : extraction::bookmark_columns)
        row.*column.field = QStringLiteral("a text of some length");
    std::vector<extraction::bookmark_row> rows(2, row);
    // As between two lists, the texts of the connection are new each time.
    for (extraction::bookmark_row &changed : rows) {
        for (QString *text :
             {&changed.nickname, &changed.hostname, &changed.uuid, &changed.port,
              &changed.remote_path, &changed.protocol, &changed.username, &changed.access_timestamp,
              &changed.download_folder, &changed.upload_folder, &changed.source_file})
            text->detach();
        changed.comment = QString(400, QLatin1Char('c'));
    }
    return rows;
}

// `on` picks what the statement is made from.
template <typename On> void insert_rows(benchmark::State &state, On on)
{
    const std::vector<extraction::bookmark_row> rows = two_rows();
    for (auto _ : state) {
        state.PauseTiming();
        source().make_database();
        state.ResumeTiming();
        results::lock_wait wait;
        results::result_connection connection(QStringLiteral("benchmark"), source().database(),
                                              wait);
        connection.open();
        results::insert_statement statement(on(&connection),
                                            extraction::bookmarks::own_profile.statement);
        for (size_t i = 0; i < list_count; ++i) {
            if (!statement.insert_row(extraction::bookmark_columns, rows[i % 2]))
                state.SkipWithError("a row was not inserted");
        }
    }
    report_each(state, "per_row", list_count);
}

void bind_and_step(benchmark::State &state)
{
    insert_rows(
        state, [](results::result_connection * connection) -> auto & { return *connection; });
}

// For drivers that use another copy of SQLite than this code.
void bind_and_step_by_query(benchmark::State &state)
{
    insert_rows(
        state,
        [](results::result_connection * connection) -> auto & { return connection->database(); });
}

// The cost of a row while no signal is due, and of one signal.
void ask_for_signal(benchmark::State &state)
{
    QElapsedTimer timer;
    timer.start();
    for (auto _ : state)
        benchmark::DoNotOptimize(timer.elapsed() > 1000);
}

void emit_signal(benchmark::State &state)
{
    cyberduck_macos adapter;
    qint64 records = 0;
    QObject::connect(&adapter, &cyberduck_macos::signal_extracted_records_of_plugin_macos, &adapter,
                     [&records](qint64 count) { records = count; });
    for (auto _ : state)
        Q_EMIT adapter.signal_extracted_records_of_plugin_macos(records + 1);
}

void extract(benchmark::State &state, void (cyberduck_macos::*extractor)())
{
    cyberduck_macos adapter;
    set_up(&adapter);
    for (auto _ : state) {
        state.PauseTiming();
        source().make_database();
        state.ResumeTiming();
        (adapter.*extractor)();
    }
    report_each(state, "per_list", list_count);
}

void extract_bookmarks(benchmark::State &state)
{
    extract(state, &cyberduck_macos::xcode_extract_bookmarks);
}

void extract_history(benchmark::State &state)
{
    extract(state, &cyberduck_macos::xcode_extract_history);
}

void extract_preferences(benchmark::State &state)
{
    cyberduck_macos adapter;
    set_up(&adapter);
    source().make_database();
    for (auto _ : state)
        adapter.xcode_extract_preferences(source().preferences(), QStringLiteral("alice"));
}

BENCHMARK(walk_folder)->Unit(benchmark::kMillisecond);
BENCHMARK(walk_and_stat)->Unit(benchmark::kMillisecond);
BENCHMARK(walk_and_read)->Unit(benchmark::kMillisecond);
BENCHMARK(parse_xml)->Unit(benchmark::kMicrosecond);
BENCHMARK(parse_binary)->Unit(benchmark::kMicrosecond);
BENCHMARK(read_row_of_xml)->Unit(benchmark::kMicrosecond);
BENCHMARK(read_row_of_binary)->Unit(benchmark::kMicrosecond);
BENCHMARK(pass_texts_as_utf16)->Unit(benchmark::kMicrosecond);
BENCHMARK(pass_texts_as_bytes)->Unit(benchmark::kMicrosecond);
BENCHMARK(map_path)->Unit(benchmark::kMicrosecond);
BENCHMARK(bind_and_step)->Unit(benchmark::kMillisecond);
BENCHMARK(bind_and_step_by_query)->Unit(benchmark::kMillisecond);
BENCHMARK(ask_for_signal)->Unit(benchmark::kMicrosecond);
BENCHMARK(emit_signal)->Unit(benchmark::kMicrosecond);
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
