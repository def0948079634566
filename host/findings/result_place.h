// Where the plug-in writes, and the checks that keep it away from the evidence.
#pragma once

#include "host/options/exit_status.h"

#include <QString>

#include <optional>

namespace host {

// What the plug-in makes below the result directory. Its own name is part of the paths.
struct result_place
{
    QString directory;        // as given to the plug-in; absolute
    QString plugin_folder;    // ends in "/"
    QString temporary_folder; // in it; the plug-in removes it with its content at the end
    QString database;
    QString inventory;
    QString run_account; // run.json
    QString view;        // lists that were copied; ends in "/"
};

result_place place_of_results(const QString &directory, const QString &artifact_name);

// True when `path` is `folder` or lies inside it. `path` need not exist yet. Links are resolved in
// both, also dangling ones: a file made through such a link appears where the link leads.
bool is_inside(const QString &path, const QString &folder);

// Fails when the plug-in would write or remove something inside the source, or remove a folder that
// holds the source. Creates nothing.
std::optional<failure> check_apart_from_source(const result_place &place, const QString &debug_log,
                                               const QString &source);

// Fails when an earlier run has left a result there.
std::optional<failure> check_no_result(const result_place &place);

// Makes the result directory if it is missing. Tries whether the plug-in can write there and into
// the debug log (empty: none).
std::optional<failure> check_writable(const result_place &place, const QString &debug_log);

} // namespace host
