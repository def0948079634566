// The one place that opens files and folders of the source.
#pragma once

#include "evidence/access/descriptor.h"

#include <QByteArray>

namespace evidence {

// Each opens `path`, relative to the open folder `parent` or AT_FDCWD. No component of it may be a
// link: what was resolved before can have been replaced since, and a link could lead out of the
// source. Closed on failure; errno then holds the reason.

// For reading, with these flags added. Changes no access time where the system allows that: Linux
// lets the file's owner and root ask for it.
[[nodiscard]] descriptor open_unchanged(int parent, const char *path, int flags);

// Without reading: neither a FIFO nor a device notices. A link in the last component is held
// itself. Good for facts, and as parent of other calls. Fails with ENOSYS on a system that cannot.
[[nodiscard]] descriptor hold(int parent, const char *path);

// A folder, as parent of other calls. On a system that cannot hold, opens it for reading.
[[nodiscard]] descriptor hold_folder(int parent, const char *path);

// For reading what was held, whatever its path names now.
[[nodiscard]] descriptor read_held(const descriptor &held, int flags);

// What the link `name` in the open folder `parent` says, as it is written; null for anything else.
[[nodiscard]] QByteArray read_link(int parent, const char *name);

// What open_unchanged does on a system that cannot refuse links by itself.
[[nodiscard]] descriptor open_step_by_step(int parent, const char *path, int flags);

} // namespace evidence
