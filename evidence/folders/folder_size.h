// The bytes that a file or everything below a folder holds.
#pragma once

#include "evidence/access/held_file.h"
#include "run/cancellation.h"

#include <QString>

#include <optional>

namespace evidence {

struct tree_size
{
    // nullopt when it is a link or a folder that may not be listed. Also when a folder is moved
    // away during the walk: the sum is not the size of anything then.
    std::optional<qint64> bytes;
    // The first folder that could not be listed, or not to its end; null when there was none.
    QString left_out;
};

// Of the regular file that is held, or of all regular files below the folder, each name counted,
// hidden ones included. `path`: its path, for `left_out`. Links are neither followed nor counted,
// other kinds of files hold nothing. Nothing but folders is opened; two descriptors are in use at
// most, however deep the tree.
//
// Stops before an entry once cancelled and returns the size of the folder's own entry.
[[nodiscard]] tree_size size_of(const held_file &top, const QString &path,
                                const run::cancellation &cancelled);

// The same for a path that the host names.
[[nodiscard]] tree_size size_of(const QString &path, const run::cancellation &cancelled);

} // namespace evidence
