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
    QStringList command_line; // as typed
    QStringList sources;      // as typed
    QString layout;           // empty: the first that fits
    QString result_directory; // as typed
    QString plugin_file;      // empty: the default places
    QString scheme;
    QString os_display;
    QString source_type;
    QList<account> accounts; // empty: those found on the source
    QStringList tabs;
    QStringList attributes;
    int engine = 0;
    int source_count = 0; // of the first source; 0: the next free one
    QString debug_log;    // absolute; empty: none
    bool encipher_log = false;
    bool debug_terminal = false;
    bool append = false;
    bool force = false; // replaces an earlier result
    bool dry_run = false;
    bool takes_inventory = true;
    int jobs = 1; // threads that read lists for the inventory
    QString case_name;
    QString evidence_name;
    QString examiner;
    QString notes;
    bool is_quiet = false;
    bool is_verbose = false;
    qint64 cancel_after = 0; // records; 0: never
    progress_mode progress = progress_mode::automatic;
    bool json = false;
};

// Fills `options`. Returns nothing when the run shall begin, else how the sub-command ended.
std::optional<exit_status> read_extract_options(const QStringList &arguments,
                                                extract_options &options);

} // namespace host
