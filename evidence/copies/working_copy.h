// Working copies of source files in a folder that the host chooses.
#pragma once

#include "run/cancellation.h"

#include <QString>

namespace evidence {

enum class copied_file {
    regular,
    database // brings its "-shm" and "-wal" files along, and finds no others beside it
};

// Copies `source_path` into `folder`, made if need be, under a name that is free there and returns
// the copy's path, whether copying succeeded or not: a missing file tells of the failure. What
// could not be copied whole is removed. Only a regular file is copied, never through a link, which
// could lead out of the source.
//
// Empty for a blank source path or folder. When the run was cancelled there is no free name:
// nothing is copied or deleted, and the path is the folder itself, which cannot be mistaken for a
// copy.
[[nodiscard]] QString make_working_copy(const QString &source_path, const QString &folder,
                                        copied_file kind, const run::cancellation &cancelled);

} // namespace evidence
