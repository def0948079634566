// Compares the whole extraction with the least that it can cost and with the script that an
// examiner would write, over the same files, in turn. Prints a table. --json and --plot write
// files.
#include "cost_plot.h"
#include "floor.h"
#include "generated_source.h"
#include "extraction/bookmarks.h"
#include "extraction/history.h"
#include "extraction/transfers.h"
#include "paired_runs.h"
#include "plugin_run.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTextStream>

#include <unistd.h>

#include <functional>
#include <optional>
#include <vector>

namespace {

constexpr int items_per_transfer = 20;
constexpr int largest_paired_peer = 20000; // rows; above that the script gets fewer rounds
constexpr int rounds_of_large_peer = 1;
constexpr double microseconds_per_second = 1e6;

struct measured_case
{
    QString name;
    QString table;
    int rows = 0;
    bool is_cold = false;
    std::vector<measured_contender> contenders;
    double peak_mib = 0; // of a process that only runs the plug-in once
};

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

// Starting Python is not measured.
run_outcome run_script(const generated_source &source, const QString &table)
{
    QProcess script;
    script.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    script.start(QStringLiteral("python3"),
                 {QStringLiteral(CYBERDUCK_PEER_SCRIPT), source.root(), table, source.database()});
    if (!script.waitForFinished(-1) || script.exitCode() != 0)
        return {};
    const QList<QByteArray> told = script.readAllStandardOutput().split(' ');
    return {told.value(0).toInt(), told.value(1).toDouble() * microseconds_per_second};
}

// Drops the files of all sources from the system's cache. False when that fails.
bool drop_cache()
{
    ::sync();
    QFile control(QStringLiteral("/proc/sys/vm/drop_caches"));
    return control.open(QIODevice::WriteOnly) && control.write("3\n") > 0 && control.flush();
}

struct case_plan
{
    QString name;
    const char *table;
    int lists;
    int rows_per_list = 1;
    bool has_copies = false;
    bool is_cold = false;
    bool logs = false;
    int rounds = 7;
};

template <typename Row, size_t Count>
QList<QByteArray> names_of(const results::column_field<Row> (&columns)[Count])
{
    QList<QByteArray> names;
    for (const auto &column : columns)
        names.append(column.column);
    return names;
}

QList<QByteArray> columns_of(const QString &table)
{
    if (table == QLatin1String(bookmarks_table))
        return names_of(extraction::bookmark_columns);
    return table == QLatin1String(history_table) ? names_of(extraction::history_columns)
                                                 : names_of(extraction::transfer_columns);
}

// Its rows have the texts of a row that the plug-in wrote.
floor_shape floor_of(const case_plan &plan, const generated_source &source)
{
    const QString table = QLatin1String(plan.table);
    const bool is_transfer = plan.rows_per_list > 1;
    static_cast<void>(run_plugin(source.root(), source.result_folder(), table));
    floor_shape shape = floor_like_first_row(source.database(), table, columns_of(table));
    shape.folder = source.lists_of(plan.table);
    shape.suffix = is_transfer ? QStringLiteral(".cyberducktransfer") : QStringLiteral(".duck");
    shape.rows_per_file = plan.rows_per_list;
    if (plan.has_copies)
        shape.copy_of = [&source](const QByteArray &list, int row) {
            return source.local_copy_of(list, row);
        };
    return shape;
}

measured_case measure_case(const case_plan &plan)
{
    generated_source source;
    const QString table = QLatin1String(plan.table);
    if (plan.rows_per_list > 1)
        source.write_transfers(
            {plan.lists, plan.rows_per_list, plan.has_copies, plan.rows_per_list});
    else
        source.write_connections(plan.table, plan.lists);
    const int rows = plan.lists * plan.rows_per_list;
    const floor_shape floor = floor_of(plan, source);
    const auto plug_in = [&](debug_log log) {
        return [&source, table, log] {
            return run_outcome{run_plugin(source.root(), source.result_folder(), table, log)};
        };
    };
    std::vector<contender> contenders = {
        {QStringLiteral("floor"), [&floor] { return run_outcome{run_floor(floor)}; }, plan.rounds},
        {QStringLiteral("plug-in"), plug_in(debug_log::off), plan.rounds},
        {QStringLiteral("script"), [&] { return run_script(source, table); },
         rows > largest_paired_peer ? rounds_of_large_peer : plan.rounds}};
    if (plan.logs) {
        contenders.push_back(
            {QStringLiteral("plug-in, log in the clear"), plug_in(debug_log::clear), plan.rounds});
        contenders.push_back({QStringLiteral("plug-in, log enciphered"),
                              plug_in(debug_log::enciphered), plan.rounds});
    }
    measured_case result = {plan.name, table, rows, plan.is_cold, {}, 0};
    result.contenders = measure_in_turn(contenders, plan.rounds, rows, [&] {
        source.make_database();
        if (plan.is_cold)
            drop_cache();
    });
    source.make_database();
    result.peak_mib = run_in_own_process(source.root(), source.result_folder(), table).peak_mib;
    return result;
}

void print_case(const measured_case &measured)
{
    out() << QStringLiteral("%1: %2 rows%3, peak %4 MiB\n")
                 .arg(measured.name)
                 .arg(measured.rows)
                 .arg(measured.is_cold ? QStringLiteral(", cold cache") : QString())
                 .arg(measured.peak_mib, 0, 'f', 1);
    for (const measured_contender &one : measured.contenders) {
        out() << QStringLiteral("  %1 %2 µs/row, %3 on a processor, %4 x floor (%5 rounds)\n")
                     .arg(one.name, -28)
                     .arg(one.elapsed_us_per_row, 8, 'f', 2)
                     .arg(one.processor_us_per_row, 8, 'f', 2)
                     .arg(one.times_first, 6, 'f', 2)
                     .arg(one.rounds);
    }
    out() << QStringLiteral("  the script takes %1 times as long as the plug-in\n")
                 .arg(measured.contenders[2].elapsed_us_per_row /
                          measured.contenders[1].elapsed_us_per_row,
                      0, 'f', 1);
    out().flush();
}

QJsonObject json_of(const measured_case &measured)
{
    QJsonArray contenders;
    for (const measured_contender &one : measured.contenders) {
        contenders.append(QJsonObject{{"name", one.name},
                                      {"rounds", one.rounds},
                                      {"elapsed_us_per_row", one.elapsed_us_per_row},
                                      {"processor_us_per_row", one.processor_us_per_row},
                                      {"times_floor", one.times_first}});
    }
    return {{"case", measured.name},         {"table", measured.table},
            {"rows", measured.rows},         {"cold_cache", measured.is_cold},
            {"peak_mib", measured.peak_mib}, {"contenders", contenders}};
}

bool write_json(const QString &path, const std::vector<measured_case> &cases)
{
    QJsonArray all;
    for (const measured_case &measured : cases)
        all.append(json_of(measured));
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(all).toJson()) > 0;
}

// The warm runs over bookmarks, which come in several sizes.
bool plot(const QString &path, const std::vector<measured_case> &cases)
{
    QVector<cost_line> lines;
    for (const measured_case &measured : cases) {
        if (measured.table != QLatin1String(bookmarks_table) || measured.is_cold)
            continue;
        for (size_t i = 0; i < 3; ++i) {
            const measured_contender &one = measured.contenders[i];
            if (lines.size() <= int(i))
                lines.append({one.name, {}});
            lines[int(i)].points.append({double(measured.rows), one.elapsed_us_per_row});
        }
    }
    return write_cost_plot(path,
                           {QStringLiteral("Cost of a bookmark's row, warm cache"),
                            QStringLiteral("rows"), QStringLiteral("µs per row")},
                           lines);
}

std::vector<case_plan> all_cases(int rounds)
{
    const auto connections = [rounds](const char *table, int lists) {
        return case_plan{QLatin1String(table), table, lists, 1, false, false, false, rounds};
    };
    std::vector<case_plan> plans = {
        connections(bookmarks_table, 1000), connections(bookmarks_table, 2000),
        connections(bookmarks_table, 20000), connections(bookmarks_table, 200000),
        connections(history_table, 20000)};
    plans[2].logs = true;
    case_plan cold = plans[2];
    cold.is_cold = true;
    cold.logs = false;
    cold.name += QStringLiteral(", cold");
    plans.push_back(cold);
    for (const bool has_copies : {false, true}) {
        plans.push_back({has_copies ? QStringLiteral("transfers, copies there")
                                    : QStringLiteral("transfers, copies missing"),
                         transfers_table, 5000, items_per_transfer, has_copies, false, true,
                         rounds});
    }
    return plans;
}

int run_all(const QStringList &arguments)
{
    QCommandLineParser parser;
    const QCommandLineOption rounds(QStringLiteral("rounds"), QStringLiteral("Paired runs."),
                                    QStringLiteral("n"), QStringLiteral("7"));
    const QCommandLineOption only(QStringLiteral("only"),
                                  QStringLiteral("Cases of this name and size."),
                                  QStringLiteral("name:rows"));
    const QCommandLineOption json(QStringLiteral("json"), QStringLiteral("Written as JSON."),
                                  QStringLiteral("file"));
    const QCommandLineOption picture(QStringLiteral("plot"), QStringLiteral("Drawn as PNG."),
                                     QStringLiteral("file"));
    parser.addOptions({rounds, only, json, picture});
    parser.addHelpOption();
    parser.process(arguments);
    const bool can_drop = drop_cache();
    std::vector<measured_case> cases;
    for (const case_plan &plan : all_cases(parser.value(rounds).toInt())) {
        const QString label =
            plan.name + QLatin1Char(':') + QString::number(plan.lists * plan.rows_per_list);
        if (plan.is_cold && !can_drop) {
            out() << "The cache cannot be dropped here: no cold runs.\n";
            continue;
        }
        if (parser.isSet(only) && label != parser.value(only))
            continue;
        cases.push_back(measure_case(plan));
        print_case(cases.back());
    }
    const bool written = (!parser.isSet(json) || write_json(parser.value(json), cases)) &&
                         (!parser.isSet(picture) || plot(parser.value(picture), cases));
    return written ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const std::optional<int> ended = answer_lone_run(arguments);
    return ended ? *ended : run_all(arguments);
}
