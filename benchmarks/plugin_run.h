// Runs the plug-in over a generated source, as a host does.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

enum class debug_log { off, clear, enciphered };

// Extracts one tab for all users of the source, from finding the lists on. The result database must
// be there. Returns the number of records that the plug-in counted.
[[nodiscard]] int run_plugin(const QString &root, const QString &result_folder, const QString &tab,
                             debug_log log = debug_log::off);

// What a process needed that did nothing but one such run.
struct lone_run
{
    int records = -1;
    double elapsed_us = 0;
    double processor_us = 0;
    double peak_mib = 0; // resident
};

// The command that starts this program for such a run.
[[nodiscard]] QStringList lone_run_command(const QString &root, const QString &result_folder,
                                           const QString &tab);
// Starts it. Ends the program on a failure.
[[nodiscard]] lone_run run_in_own_process(const QString &root, const QString &result_folder,
                                          const QString &tab);
// Does that run when the arguments of main() ask for it; then returns the status to exit with.
[[nodiscard]] std::optional<int> answer_lone_run(const QStringList &arguments);
