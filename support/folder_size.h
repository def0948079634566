// The bytes that a file or everything below a folder holds.
#pragma once

#include <QString>

#include <atomic>
#include <optional>

namespace support {

// Bytes of the regular file `path`, or of all regular files below the folder `path`, each name
// counted, hidden ones included. Links are neither followed nor counted, other kinds of files hold
// nothing; a folder that may not be listed counts as empty. Nothing but folders is opened; two
// descriptors are in use at most, however deep the tree.
//
// Stops before an entry when `cancelled` is set and returns the size of the folder's own entry.
// nullopt when there is no such path, when it is itself a link, and when a folder is moved away
// during the walk, since what was counted is not the size of anything then.
[[nodiscard]] std::optional<qint64> size_of(const QString &path,
                                            const std::atomic<bool> &cancelled);

} // namespace support
