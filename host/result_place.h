// Where the plug-in writes, and the checks that keep it away from the evidence.
#pragma once

#include "exit_status.h"

#include <QString>

#include <optional>

namespace host {

// What the plug-in makes below the result directory, by the name that it gives itself.
struct result_place
{
    QString directory;        // as the plug-in gets it; absolute
    QString plugin_folder;    // ends in "/"
    QString temporary_folder; // in it; the plug-in removes it, with all it holds, at the end
    QString database;
};

result_place place_of_results(const QString &directory, const QString &artifact_name);

// True when `path`, which need not exist yet, lies inside the folder `folder` or is it. Links are
// resolved in both, dangling ones too: a file made through such a link appears where it leads.
bool is_inside(const QString &path, const QString &folder);

// Fails when anything the plug-in writes or removes would be inside the source, or the source
// inside what it removes. Creates nothing.
std::optional<failure> check_apart_from_source(const result_place &place, const QString &debug_log,
                                               const QString &source);

// Makes the result directory when it is missing and proves by doing that the plug-in can write
// there and into the debug log (empty: none).
std::optional<failure> check_writable(const result_place &place, const QString &debug_log);

} // namespace host
