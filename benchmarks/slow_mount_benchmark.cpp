// Measures lists and local copies on a mount on which every request waits. There the number of
// requests is the time. Prints a table.
#include "generated_source.h"
#include "plugin_run.h"

#include <QApplication>
#include <QFileInfo>
#include <QProcess>
#include <QTextStream>
#include <QThread>

namespace {

constexpr int items = 1000;
constexpr int folders_of_copies = 20;

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

// Shows a folder through slow_mount while it lives.
class slow_mount
{
public:
    slow_mount(const QString &folder, int delay_us)
    {
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process_.start(QStringLiteral(CYBERDUCK_SLOW_MOUNT),
                       {folder, mount_point_.path(), QString::number(delay_us)});
        const QString users = mount_point_.filePath(QStringLiteral("Users"));
        while (process_.state() != QProcess::NotRunning && !QFileInfo::exists(users)) {
            process_.waitForFinished(10);
        }
    }
    ~slow_mount() { static_cast<void>(unmount()); }
    slow_mount(const slow_mount &) = delete;
    slow_mount &operator=(const slow_mount &) = delete;

    [[nodiscard]] bool is_mounted() const { return process_.state() != QProcess::NotRunning; }
    [[nodiscard]] QString root() const { return mount_point_.path() + QLatin1Char('/'); }

    // Returns the requests of each kind, a line each.
    QString unmount()
    {
        if (!is_mounted())
            return {};
        QProcess::execute(QStringLiteral("fusermount3"),
                          {QStringLiteral("-u"), mount_point_.path()});
        process_.waitForFinished(-1);
        return QString::fromUtf8(process_.readAllStandardOutput());
    }

private:
    QTemporaryDir mount_point_;
    QProcess process_;
};

double sum_of(const QString &requests)
{
    double sum = 0;
    const QStringList lines = requests.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &line : lines)
        sum += line.section(QLatin1Char(' '), 1).toDouble();
    return sum;
}

// False when there is no such mount to be had.
bool measure(const generated_source &source, const char *tab, const QString &name, int delay_us)
{
    source.make_database();
    slow_mount mount(source.root(), delay_us);
    if (!mount.is_mounted())
        return false;
    const lone_run run =
        run_in_own_process(mount.root(), source.result_folder(), QLatin1String(tab));
    if (run.records != items)
        qFatal("%s gave %d rows instead of %d", tab, run.records, items);
    const QString requests = mount.unmount();
    out() << QStringLiteral("  %1 %2 ms a request: %3 ms each, %4 requests each (%5)\n")
                 .arg(name, -34)
                 .arg(delay_us / 1000)
                 .arg(run.elapsed_us / 1000 / items, 0, 'f', 2)
                 .arg(sum_of(requests) / items, 0, 'f', 2)
                 .arg(requests.simplified());
    out().flush();
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (const std::optional<int> ended = answer_lone_run(QApplication::arguments()))
        return *ended;
    generated_source lists;
    lists.write_connections(bookmarks_table, items);
    generated_source copies;
    copies.write_transfers({1, items, true, items / folders_of_copies});
    generated_source told;
    told.write_transfers({1, items, true, items / folders_of_copies, true});
    out() << "Slow mounts\n";
    for (const int delay_us : {1000, 5000}) {
        const bool is_measured =
            measure(lists, bookmarks_table, QStringLiteral("bookmarks"), delay_us) &&
            measure(copies, transfers_table, QStringLiteral("transfers, copies there"), delay_us) &&
            measure(told, transfers_table, QStringLiteral("transfers, copies with where-from"),
                    delay_us);
        if (!is_measured) {
            out() << "No folder can be mounted here: nothing is measured.\n";
            return 0;
        }
    }
    return 0;
}
