// Counts the system calls that a local copy costs: those of a run over many copies, less those of a
// run over none. Ends with 1 when there are more than there may be. Needs strace.
#include "generated_source.h"
#include "plugin_run.h"

#include <QApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryFile>
#include <QTextStream>

namespace {

constexpr int copies = 10'000;
constexpr int folders_of_copies = 20;

struct counted_case
{
    const char *name;
    bool says_where_from;
    double most_calls; // for a copy
};
constexpr counted_case cases[] = {
    {"without metadata", false, 7},
    {"with a where-from attribute", true, 10},
};

// Of a whole process.
double calls_of_run(const generated_source &source)
{
    source.make_database();
    QTemporaryFile counts;
    if (!counts.open())
        qFatal("no temporary file");
    QStringList arguments = {QStringLiteral("-f"), QStringLiteral("-c"), QStringLiteral("-o"),
                             counts.fileName()};
    arguments +=
        lone_run_command(source.root(), source.result_folder(), QLatin1String(transfers_table));
    if (QProcess::execute(QStringLiteral("strace"), arguments) != 0)
        qFatal("strace failed");
    // % time, seconds, microseconds for a call, calls, errors if any, "total"
    const QRegularExpression total(QStringLiteral("\\n *[\\d.]+ +[\\d.]+ +\\d* +(\\d+) .*total"));
    return total.match(QString::fromUtf8(counts.readAll())).captured(1).toDouble();
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (const std::optional<int> ended = answer_lone_run(QApplication::arguments()))
        return *ended;
    QTextStream out(stdout);
    const double calls_without_copies = calls_of_run(generated_source());
    bool is_met = true;
    for (const counted_case &counted : cases) {
        generated_source source;
        source.write_transfers(
            {1, copies, true, copies / folders_of_copies, counted.says_where_from});
        const double calls = (calls_of_run(source) - calls_without_copies) / copies;
        out << QStringLiteral("system calls for a copy %1: %2, at most %3\n")
                   .arg(QLatin1String(counted.name))
                   .arg(calls, 0, 'f', 2)
                   .arg(counted.most_calls);
        is_met = is_met && calls <= counted.most_calls;
    }
    return is_met ? 0 : 1;
}
