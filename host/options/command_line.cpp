#include "host/options/command_line.h"

#include "log/visible_text.h"

#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>

namespace host {

namespace {

bool has_output_failed = false;

void write_line(const QString &message)
{
    const QByteArray line = "plugin_host: " + logging::visible_text(message).toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stderr);
    std::fflush(stderr);
}

// Qt's own usage line does not know the sub-command.
QString help_for(const QCommandLineParser &parser, const help_text &help)
{
    const QString options = parser.helpText();
    return QStringLiteral("Usage: plugin_host %1\n%2\nExample:\n%3\n")
        .arg(QString::fromUtf8(help.usage), options.mid(options.indexOf(QLatin1Char('\n')) + 1),
             QString::fromUtf8(help.example));
}

} // namespace

std::optional<exit_status> parse(QCommandLineParser &parser, const QStringList &arguments,
                                 const help_text &help)
{
    const QCommandLineOption help_option({QStringLiteral("h"), QStringLiteral("help")},
                                         QStringLiteral("Show this help."));
    parser.addOption(help_option);
    if (!parser.parse(arguments)) {
        return report({exit_status::wrong_usage, QStringLiteral("%1 Try 'plugin_host %2 --help'.")
                                                     .arg(parser.errorText(), arguments.value(0))});
    }
    if (!parser.isSet(help_option))
        return std::nullopt;
    print(help_for(parser, help));
    return exit_status::done;
}

exit_status report(const failure &what)
{
    write_line(what.message);
    return what.status;
}

void warn(const QString &message)
{
    write_line(QStringLiteral("warning: ") + message);
}

void print(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    const auto size = static_cast<size_t>(bytes.size());
    has_output_failed = std::fwrite(bytes.constData(), 1, size, stdout) != size ||
                        std::fflush(stdout) != 0 || has_output_failed;
}

bool output_failed()
{
    return has_output_failed;
}

bool is_lost_working_folder(const QStringList &paths)
{
    const bool has_relative = std::any_of(paths.begin(), paths.end(), [](const QString &path) {
        return !path.isEmpty() && !path.startsWith(QLatin1Char('/'));
    });
    char folder[PATH_MAX];
    return has_relative && ::getcwd(folder, sizeof folder) == nullptr;
}

QStringList comma_list(const QString &text)
{
    QStringList parts;
    const QStringList raw_parts = text.split(QLatin1Char(','));
    for (const QString &part : raw_parts) {
        const QString trimmed = part.trimmed();
        if (!trimmed.isEmpty())
            parts.append(trimmed);
    }
    return parts;
}

} // namespace host
