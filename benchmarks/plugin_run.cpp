#include "plugin_run.h"

#include "host_interface/frame/cyberduck.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTextStream>

#include <sys/resource.h>

#include <chrono>

namespace {

constexpr char lone_run_option[] = "--lone-run";
constexpr double kibibytes_per_mebibyte = 1024;

struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info describe(const QString &root)
{
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info source;
    source.fs_extraction_source_path = root;
    source.source_type_internal = QStringLiteral("macOS_Image");
    source.os_scheme_internal = QStringLiteral("macOS");
    source.os_scheme_display = QStringLiteral("macOS");
    const QStringList users =
        QDir(root + QStringLiteral("Users")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &user : users)
        source.system_account_QList.append({user, QString()});
    return source;
}

qint64 microseconds(const timeval &time)
{
    return qint64{time.tv_sec} * 1'000'000 + time.tv_usec;
}

qint64 processor_us()
{
    rusage used = {};
    ::getrusage(RUSAGE_SELF, &used);
    return microseconds(used.ru_utime) + microseconds(used.ru_stime);
}

// Of this program so far. getrusage would include the peak of the process that started it.
double peak_mib()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray all = status.readAll();
    const int start = all.indexOf("VmHWM:") + 6;
    return all.mid(start, all.indexOf("kB", start) - start).trimmed().toDouble() /
           kibibytes_per_mebibyte;
}

} // namespace

int run_plugin(const QString &root, const QString &result_folder, const QString &tab, debug_log log)
{
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info general;
    general.debug_mode_status = log != debug_log::off;
    general.debug_print_in_file = log != debug_log::off;
    general.debug_encryption_status = log == debug_log::enciphered;
    general.debug_file_path = result_folder + QStringLiteral("/debug.log");
    QFile::remove(general.debug_file_path);
    qint64 records = -1;
    cyberduck frame;
    QObject::connect(&frame, &cyberduck::signal_extracted_records_of_plugin_overall, &frame,
                     [&records](qint64 count) { records = count; });
    frame.pub_set_engine_type(0);
    frame.pub_set_essentials();
    frame.pub_set_source_count(1);
    frame.pub_set_general_info(general);
    frame.pub_set_source_info(describe(root));
    frame.pub_set_essential_for_haldo_bench_extraction({tab}, {});
    frame.pub_set_result_directory(result_folder);
    frame.pub_find_source_file();
    frame.pub_extract_artifacts();
    return int(records);
}

QStringList lone_run_command(const QString &root, const QString &result_folder, const QString &tab)
{
    return {QCoreApplication::applicationFilePath(), QLatin1String(lone_run_option), root,
            result_folder, tab};
}

lone_run run_in_own_process(const QString &root, const QString &result_folder, const QString &tab)
{
    QProcess alone;
    alone.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QStringList command = lone_run_command(root, result_folder, tab);
    const QString program = command.takeFirst();
    alone.start(program, command);
    if (!alone.waitForFinished(-1) || alone.exitCode() != 0)
        qFatal("the run of its own failed");
    const QList<QByteArray> told = alone.readAllStandardOutput().split(' ');
    return {told.value(0).toInt(), told.value(1).toDouble(), told.value(2).toDouble(),
            told.value(3).toDouble()};
}

std::optional<int> answer_lone_run(const QStringList &arguments)
{
    if (arguments.value(1) != QLatin1String(lone_run_option))
        return std::nullopt;
    const qint64 processor_before = processor_us();
    const auto before = std::chrono::steady_clock::now();
    const int records = run_plugin(arguments.value(2), arguments.value(3), arguments.value(4));
    const std::chrono::duration<double, std::micro> elapsed =
        std::chrono::steady_clock::now() - before;
    QTextStream(stdout) << records << ' ' << qRound64(elapsed.count()) << ' '
                        << processor_us() - processor_before << ' ' << peak_mib();
    return records < 0;
}
