// What all sub-commands share: the shape of a sub-command, parsing, and one-line failures.
#pragma once

#include "exit_status.h"

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <optional>

namespace host {

struct sub_command
{
    const char *name;
    const char *summary; // one line for --help
    // `arguments` as a program would get them: first the sub-command's name, then the rest.
    exit_status (*run)(const QStringList &arguments);
};

// Texts that --help shows around the options.
struct help_text
{
    const char *usage;   // what follows the program's name
    const char *example; // whole command lines
};

// Parses `arguments` with the options added to `parser` so far, and adds --help. Answers nothing
// when the sub-command shall go on, otherwise how it has ended: help was printed on standard
// output, or the one line about wrong usage on standard error.
std::optional<exit_status> parse(QCommandLineParser &parser, const QStringList &arguments,
                                 const help_text &help);

// Prints "plugin_host: MESSAGE" on standard error as one line, whatever characters a file name
// in it holds, and answers the failure's status.
exit_status report(const failure &what);
void warn(const QString &message);

void print(const QString &text); // on standard output, as UTF-8

// The texts of a comma list, trimmed, without empty ones.
QStringList comma_list(const QString &text);

} // namespace host
