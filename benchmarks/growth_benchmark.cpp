// Measures what one item costs as a source grows. Each size is a source of its own, and each run a
// process of its own. The sizes run in turn. Processor time counts: the runs wait for nothing but
// the disk below the result database. Prints a table. --json and --plot write files.
#include "cost_plot.h"
#include "generated_index.h"
#include "generated_source.h"
#include "median.h"
#include "plugin_run.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

#include <functional>
#include <memory>
#include <vector>

namespace {

constexpr double kibibytes_per_mebibyte = 1024;

// A way in which sources grow.
struct growth
{
    const char *name;
    const char *item;
    const char *tab;
    std::vector<int> sizes; // items, ascending; but for the nesting, the depth
    void (*fill)(generated_source *source, int size);
    int items = 0; // of every size; 0: as many as the size says
};

void fill_users(generated_source *source, int users)
{
    constexpr int lists_of_a_user = 200;
    for (int i = 0; i < users; ++i)
        source->write_connections(bookmarks_table, lists_of_a_user,
                                  QStringLiteral("user %1").arg(i));
}

void fill_lists(generated_source *source, int lists)
{
    source->write_connections(bookmarks_table, lists);
}

constexpr int nested_folders = 10'000;

void fill_nested(generated_source *source, int depth)
{
    source->write_nested_folders(nested_folders, depth);
}

constexpr int items_of_a_list = 1000;
constexpr int items_beside_an_index = 100;

void fill_queue(generated_source *source, int items, int copies_in_folder)
{
    source->write_transfers({items / items_of_a_list, items_of_a_list, true, copies_in_folder});
}

void fill_one_folder(generated_source *source, int items)
{
    fill_queue(source, items, items);
}

void fill_many_folders(generated_source *source, int items)
{
    fill_queue(source, items, 1);
}

void fill_index(generated_source *source, int records)
{
    source->write_transfers({1, items_beside_an_index, true, items_beside_an_index});
    source->write_index(generated_index::of_volume(quint64(records)));
}

const std::vector<growth> growths = {
    {"users", "user of 200 bookmarks", bookmarks_table, {1, 10, 100, 1000}, fill_users},
    {"lists", "bookmark in one folder", bookmarks_table, {1000, 10'000, 100'000}, fill_lists},
    {"nesting",
     "empty folder, by depth",
     bookmarks_table,
     {1, 10, 100, 1000},
     fill_nested,
     nested_folders},
    {"one folder",
     "transfer, copies in one folder",
     transfers_table,
     {1000, 10'000, 100'000},
     fill_one_folder},
    {"many folders",
     "transfer, each copy in a folder",
     transfers_table,
     {1000, 10'000, 100'000},
     fill_many_folders},
    {"index",
     "record of a volume's index",
     transfers_table,
     {10'000, 100'000, 1'000'000},
     fill_index},
};

struct measured_size
{
    int size = 0;
    double us_per_item = 0;  // of a processor
    double times_second = 0; // the same, as a ratio to the second size
    double peak_mib = 0;
};

struct grown_source
{
    generated_source source;
    std::vector<double> processor_us;
    std::vector<double> ratios; // of an item's time to that of the second size, round by round
    double peak_mib = 0;
};

int items_at(const growth &shape, size_t index)
{
    return shape.items != 0 ? shape.items : shape.sizes[index];
}

std::vector<measured_size> measure(const growth &shape, int rounds)
{
    std::vector<std::unique_ptr<grown_source>> grown;
    for (const int size : shape.sizes) {
        grown.push_back(std::make_unique<grown_source>());
        shape.fill(&grown.back()->source, size);
    }
    for (int round = 0; round < rounds; ++round) {
        for (const auto &one : grown) {
            one->source.make_database();
            const lone_run run = run_in_own_process(one->source.root(), one->source.result_folder(),
                                                    QLatin1String(shape.tab));
            one->processor_us.push_back(run.processor_us);
            one->peak_mib = std::max(one->peak_mib, run.peak_mib);
        }
        for (size_t i = 0; i < grown.size(); ++i)
            grown[i]->ratios.push_back(grown[i]->processor_us.back() / items_at(shape, i) /
                                       (grown[1]->processor_us.back() / items_at(shape, 1)));
    }
    std::vector<measured_size> sizes;
    for (size_t i = 0; i < grown.size(); ++i)
        sizes.push_back({shape.sizes[i], median(grown[i]->processor_us) / items_at(shape, i),
                         median(grown[i]->ratios), grown[i]->peak_mib});
    return sizes;
}

void print_growth(const growth &shape, const std::vector<measured_size> &sizes)
{
    QTextStream out(stdout);
    out << shape.name << " (" << shape.item << ")\n";
    for (size_t i = 0; i < sizes.size(); ++i) {
        const double more_kib = (sizes[i].peak_mib - sizes[0].peak_mib) * kibibytes_per_mebibyte;
        out << QStringLiteral("  %1: %2 µs each, %3 of the second size; peak %4 MiB, %5 KiB each "
                              "more than the first\n")
                   .arg(sizes[i].size, 8)
                   .arg(sizes[i].us_per_item, 9, 'f', 2)
                   .arg(sizes[i].times_second, 5, 'f', 2)
                   .arg(sizes[i].peak_mib, 6, 'f', 1)
                   .arg(more_kib / items_at(shape, i), 0, 'f', 3);
    }
}

QJsonObject json_of(const growth &shape, const std::vector<measured_size> &sizes)
{
    QJsonArray all;
    for (const measured_size &one : sizes) {
        all.append(QJsonObject{{"size", one.size},
                               {"processor_us_per_item", one.us_per_item},
                               {"times_second_size", one.times_second},
                               {"peak_mib", one.peak_mib}});
    }
    return {{"growth", shape.name}, {"item", shape.item}, {"sizes", all}};
}

cost_line line_of(const growth &shape, const std::vector<measured_size> &sizes)
{
    cost_line line = {QLatin1String(shape.name), {}};
    for (const measured_size &one : sizes)
        line.points.append({double(one.size), one.us_per_item});
    return line;
}

int run_all(const QStringList &arguments)
{
    QCommandLineParser parser;
    const QCommandLineOption rounds(QStringLiteral("rounds"), QStringLiteral("Runs of each size."),
                                    QStringLiteral("n"), QStringLiteral("7"));
    const QCommandLineOption only(QStringLiteral("only"), QStringLiteral("One growth."),
                                  QStringLiteral("name"));
    const QCommandLineOption json(QStringLiteral("json"), QStringLiteral("Written as JSON."),
                                  QStringLiteral("file"));
    const QCommandLineOption picture(QStringLiteral("plot"), QStringLiteral("Drawn as PNG."),
                                     QStringLiteral("file"));
    parser.addOptions({rounds, only, json, picture});
    parser.addHelpOption();
    parser.process(arguments);
    QJsonArray all;
    QVector<cost_line> lines;
    for (const growth &shape : growths) {
        if (parser.isSet(only) && parser.value(only) != QLatin1String(shape.name))
            continue;
        const std::vector<measured_size> sizes = measure(shape, parser.value(rounds).toInt());
        print_growth(shape, sizes);
        all.append(json_of(shape, sizes));
        lines.append(line_of(shape, sizes));
    }
    QFile file(parser.value(json));
    const bool is_told = !parser.isSet(json) || (file.open(QIODevice::WriteOnly) &&
                                                 file.write(QJsonDocument(all).toJson()) > 0);
    const bool is_drawn =
        !parser.isSet(picture) ||
        write_cost_plot(parser.value(picture),
                        {QStringLiteral("Cost of an item as sources grow, warm cache"),
                         QStringLiteral("items (nesting: depth)"),
                         QStringLiteral("µs of a processor per item")},
                        lines);
    return is_told && is_drawn ? 0 : 1;
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
