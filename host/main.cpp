// plugin_host: loads the plug-in library as the examination application does and runs it from the
// command line.
#include "command_line.h"
#include "extract_command.h"
#include "show_command.h"

#include <QApplication>
#include <QByteArray>
#include <QTextCodec>

#include <optional>

namespace {

using host::exit_status;

// A new sub-command is a row here and a file of its own.
constexpr host::sub_command sub_commands[] = {
    {"extract", "run the plug-in on a source and write the result database", host::run_extract},
    {"show", "print the tables of a result database", host::run_show},
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

// While an application object is made, Qt looks into the user's runtime folder; without one it
// makes a folder among the temporary files and warns. This program writes to its results only:
// as long as this object lives, that folder has no place and the warning no reader.
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

int main(int argc, char **argv)
{
    // File names and arguments are UTF-8 in any locale, here and in the library loaded later:
    // under LC_ALL=C Qt would otherwise lose every accent. Must precede the first conversion.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "minimal"); // nothing is ever shown, no font is needed

    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromUtf8(argv[i]));

    // Qt would take options such as --style for itself, and a mistyped option would go unnoticed.
    int application_argc = argc > 0 ? 1 : 0;
    std::optional<no_runtime_folder> during_start(std::in_place);
    const QApplication application(application_argc, argv);
    during_start.reset();
    QApplication::setApplicationName(QStringLiteral("plugin_host"));
    return static_cast<int>(run(arguments));
}
