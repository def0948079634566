// What all sub-commands share: their description, parsing, and one-line failures.
#pragma once

#include "host/options/exit_status.h"

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <optional>

namespace host {

struct sub_command
{
    const char *name;
    const char *summary; // one line for --help
    // `arguments`: the sub-command's name, then the rest, as a program would get them.
    exit_status (*run)(const QStringList &arguments);
};

// Texts that --help shows around the options.
struct help_text
{
    const char *usage;   // what follows the program's name
    const char *example; // whole command lines
};

// Parses `arguments` with the options added to `parser` so far, and adds --help. Returns nothing
// when the sub-command shall go on. Otherwise it has ended: help was printed on standard output, or
// a line about wrong usage on standard error.
std::optional<exit_status> parse(QCommandLineParser &parser, const QStringList &arguments,
                                 const help_text &help);

// Prints "plugin_host: MESSAGE" on standard error and returns the failure's status. Always one
// line, whatever characters a file name in it holds.
exit_status report(const failure &what);
void warn(const QString &message);

void print(const QString &text); // on standard output, as UTF-8
// Whether something that was printed did not get there.
[[nodiscard]] bool output_failed();
// Whether a relative path among these would count from a working folder that was removed.
[[nodiscard]] bool is_lost_working_folder(const QStringList &paths);

// The texts of a comma list, trimmed, without empty ones.
QStringList comma_list(const QString &text);

} // namespace host
