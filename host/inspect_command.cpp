#include "host/inspect_command.h"

#include "evidence/files/evidence_file.h"
#include "evidence/files/file_names.h"
#include "formats/property_list/base/property_list_limits.h"
#include "host/findings/list_json.h"
#include "host/options/command_line.h"

#include <QCommandLineParser>
#include <QFile>

#include <new>
#include <optional>

namespace host {

namespace {

constexpr help_text help = {
    "inspect FILE...",
    "  plugin_host inspect Bookmarks/*.duck\n\n"
    "Exit status: 0 done, 1 a file is no property list or too costly to be shown whole, 2 wrong\n"
    "usage, 3 a file is missing or cannot be read, 4 standard output cannot be written."};

std::optional<QByteArray> read_file(const QString &path)
{
    evidence::held_file held;
    evidence::evidence_file file;
    QByteArray bytes;
    if (!held.hold_named_by_host(evidence::encoded_name(path)) ||
        !file.open(std::make_shared<evidence::held_file>(std::move(held))) ||
        !file.read_all(&bytes, formats::max_list_bytes))
        return std::nullopt;
    return bytes;
}

std::optional<QByteArray> read_standard_input()
{
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly))
        return std::nullopt;
    // One more than allowed tells that there are more.
    const QByteArray bytes = input.read(formats::max_list_bytes + 1);
    return bytes.size() > formats::max_list_bytes ? std::nullopt : std::make_optional(bytes);
}

// Prints the list. Several are elements of one array, with their names.
exit_status inspect(const QString &path, bool is_one_of_many)
{
    const auto bytes = path == QLatin1String("-") ? read_standard_input() : read_file(path);
    const QByteArray head =
        is_one_of_many ? "{\"file\": " + json_text(path) + ", \"content\": " : QByteArray();
    const QByteArray tail = is_one_of_many ? QByteArray("}") : QByteArray();
    if (!bytes) {
        print(QString::fromUtf8(head + (is_one_of_many ? "null" : "") + tail));
        return report(
            {exit_status::source_unusable,
             QStringLiteral("%1 is missing, cannot be read, or is larger than 32 MiB.").arg(path)});
    }
    formats::property_list_parser list;
    list.parse_copy(*bytes);
    if (list.contents() == nullptr) {
        print(QString::fromUtf8(head + (is_one_of_many ? "null" : "") + tail));
        return report({exit_status::incomplete,
                       QStringLiteral("%1 is no property list, or only a part of one.").arg(path)});
    }
    const list_json json = json_of(list, bytes->size());
    print(QString::fromUtf8(head + json.text + tail));
    if (json.is_whole)
        return exit_status::done;
    return report({exit_status::incomplete,
                   QStringLiteral("%1 is too costly to be shown whole: null stands for the rest.")
                       .arg(path)});
}

} // namespace

exit_status run_inspect(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.addPositionalArgument(QStringLiteral("FILE"),
                                 QStringLiteral("A property list, XML or binary; - reads standard "
                                                "input."),
                                 QStringLiteral("FILE..."));
    if (const auto ended = parse(parser, arguments, help))
        return *ended;
    const QStringList files = parser.positionalArguments();
    if (files.isEmpty() || files.contains(QString()))
        return report({exit_status::wrong_usage,
                       QStringLiteral("inspect takes a FILE; try 'plugin_host inspect --help'.")});
    if (is_lost_working_folder(files))
        return report({exit_status::wrong_usage,
                       QStringLiteral("the working folder is gone; give absolute paths.")});
    exit_status worst = exit_status::done;
    for (int i = 0; i < files.size(); ++i) {
        if (files.size() > 1)
            print(i == 0 ? QStringLiteral("[") : QStringLiteral(","));
        worst = std::max(worst, inspect(files.at(i), files.size() > 1));
    }
    if (files.size() > 1)
        print(QStringLiteral("]\n"));
    return worst;
}

} // namespace host
