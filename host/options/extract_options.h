// The command line of "extract". Checks it without touching the source.
#pragma once

#include "host/options/exit_status.h"
#include "host_interface/host_records.h"
#include "host/display/progress_display.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace host {

using account = struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_system_account;

struct extract_options
{
    QString source;           // as typed
    QString result_directory; // as typed
    QString plugin_file;      // empty: the default places
    QString scheme;
    QString os_display;
    QString source_type;
    QList<account> accounts; // empty: those found on the source
    QStringList tabs;
    QStringList attributes;
    int engine = 0;
    int source_count = 1;
    QString debug_log; // absolute; empty: none
    bool encipher_log = false;
    bool debug_terminal = false;
    bool append = false;
    qint64 cancel_after = 0; // records; 0: never
    progress_mode progress = progress_mode::automatic;
    bool json = false;
};

// Fills `options`. Returns nothing when the run shall begin, else how the sub-command ended.
std::optional<exit_status> read_extract_options(const QStringList &arguments,
                                                extract_options &options);

} // namespace host
