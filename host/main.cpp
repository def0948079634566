// plugin_host: loads the plug-in library as the examination application does and runs it from the
// command line.
#include "host/options/command_line.h"
#include "host/extract_command.h"
#include "host/scan_command.h"
#include "host/inspect_command.h"
#include "host/show_command.h"
#include "host/verify_command.h"

#include <QApplication>
#include <QByteArray>
#include <QTextCodec>

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <optional>

namespace {

using host::exit_status;

// A new sub-command is a row here and a file pair of its own.
constexpr host::sub_command sub_commands[] = {
    {"extract", "run the plug-in on a source and write the result database", host::run_extract},
    {"scan", "say what a source holds and what would be read", host::run_scan},
    {"show", "print the tables of a result database", host::run_show},
    {"verify", "check that a result and its sources are what they were", host::run_verify},
    {"inspect", "print property lists as JSON", host::run_inspect},
};

QString general_help()
{
    QString text = QStringLiteral("Usage: plugin_host COMMAND [options] ...\n\nCommands:\n");
    for (const host::sub_command &command : sub_commands)
        text += QStringLiteral("  %1 %2\n")
                    .arg(QLatin1String(command.name), -10)
                    .arg(QLatin1String(command.summary));
    return text + QStringLiteral("\n'plugin_host COMMAND --help' shows the options of a command.\n"
                                 "\nOptions:\n"
                                 "  -h, --help     Show this help.\n"
                                 "  -v, --version  Show the version.\n"
                                 "\nExample:\n"
                                 "  plugin_host scan /mnt/image\n"
                                 "  plugin_host extract /mnt/image /cases/7/results\n"
                                 "  plugin_host show /cases/7/results --tables bookmarks\n");
}

exit_status run(const QStringList &arguments)
{
    const QString first = arguments.value(1);
    if (first == QLatin1String("--help") || first == QLatin1String("-h")) {
        host::print(general_help());
        return exit_status::done;
    }
    if (first == QLatin1String("--version") || first == QLatin1String("-v")) {
        host::print(QStringLiteral("plugin_host " PLUGIN_HOST_VERSION "\n"));
        return exit_status::done;
    }
    for (const host::sub_command &command : sub_commands) {
        if (first == QLatin1String(command.name))
            return command.run(arguments.mid(1));
    }
    const QString complaint = first.isEmpty() ? QStringLiteral("a command is missing")
                                              : QStringLiteral("'%1' is no command").arg(first);
    return host::report(
        {exit_status::wrong_usage, complaint + QStringLiteral("; try 'plugin_host --help'.")});
}

QtMessageHandler handler_before = nullptr;

void drop_folder_warnings(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type == QtFatalMsg || !text.startsWith(QLatin1String("QStandardPaths: ")))
        handler_before(type, context, text);
}

// While an application object is made, Qt looks for the user's runtime folder. Without one it makes
// a folder among the temporary files and warns. This program may write only to its results: while
// this object lives, Qt cannot make that folder, and its warning is dropped.
class no_runtime_folder
{
public:
    no_runtime_folder()
        : temporary_folder_(qgetenv("TMPDIR"))
    {
        handler_before = qInstallMessageHandler(drop_folder_warnings);
        if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR"))
            qputenv("TMPDIR", "/proc/self");
    }

    ~no_runtime_folder()
    {
        if (temporary_folder_.isEmpty())
            qunsetenv("TMPDIR");
        else
            qputenv("TMPDIR", temporary_folder_);
        qInstallMessageHandler(handler_before);
    }

    no_runtime_folder(const no_runtime_folder &) = delete;
    no_runtime_folder &operator=(const no_runtime_folder &) = delete;

private:
    QByteArray temporary_folder_;
};

} // namespace

// A file that is opened later would take the place of a closed standard stream, and get what is
// written there.
void open_standard_streams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) < 0)
            static_cast<void>(::open("/dev/null", O_RDWR)); // takes the lowest free number
    }
}

int main(int argc, char **argv)
{
    open_standard_streams();
    std::signal(SIGPIPE, SIG_IGN); // writing then fails, and is reported
    // File names and arguments are UTF-8 in any locale, here and in the library. Under LC_ALL=C Qt
    // would lose every accent. Must precede the first conversion.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "minimal"); // nothing is shown, no font is needed

    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments.append(QString::fromUtf8(argv[i]));
        if (arguments.last().toUtf8() != argv[i])
            return static_cast<int>(host::report(
                {exit_status::wrong_usage,
                 QStringLiteral("'%1' is not UTF-8; give such a path by a link with another name.")
                     .arg(arguments.last())}));
    }

    // Qt would take options such as --style for itself, and a mistyped option would go unnoticed.
    int application_argc = argc > 0 ? 1 : 0;
    std::optional<no_runtime_folder> during_start(std::in_place);
    const QApplication application(application_argc, argv);
    during_start.reset();
    QApplication::setApplicationName(QStringLiteral("plugin_host"));
    const exit_status status = run(arguments);
    if (!host::output_failed() ||
        (status != exit_status::done && status != exit_status::incomplete))
        return static_cast<int>(status);
    return static_cast<int>(host::report(
        {exit_status::result_unusable, QStringLiteral("standard output cannot be written.")}));
}
