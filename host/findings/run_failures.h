// What the plug-in's log says went wrong in a run.
#pragma once

#include <QString>
#include <QStringList>

namespace host {

struct run_failures
{
    qint64 count = 0;
    QStringList first; // at most max_told_failures messages
};

constexpr int max_told_failures = 20;

// Reads the log behind `offset`. Counts lists, folders and values that were not read, and rows that
// were lost. Not counted: a transfer that names a place outside the source.
[[nodiscard]] run_failures failures_in_log(const QString &path, qint64 offset, bool is_enciphered);

} // namespace host
