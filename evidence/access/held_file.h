// One file or folder of the source, held so that every question is answered by the same one,
// whatever its path comes to name meanwhile.
#pragma once

#include "evidence/access/descriptor.h"
#include "evidence/access/file_status.h"

#include <QByteArray>

namespace evidence {

// Movable, not copyable. Holding reads nothing: neither a FIFO nor a device notices.
//
// A system that can only open, not hold, looks at the path again for each question and refuses when
// it names another file by then.
class held_file
{
public:
    // Each replaces what was held. False when there is no such file or a link is in the way; errno
    // then holds the reason.

    // `encoded_path`: free of links, but for one in the last component, which is held itself.
    bool hold(const QByteArray &encoded_path);
    // A path that the host names: the links in its folders are the host's own and are followed.
    bool hold_named_by_host(const QByteArray &encoded_path);
    // `name` in the open folder `parent`, at `encoded_path` as a whole.
    bool hold_in(int parent, const char *name, const QByteArray &encoded_path);
    // The same for what the folder's listing gave as a regular file: it is opened at once, which
    // saves calls. What may not be read is held.
    bool hold_listed(int parent, const char *name, const QByteArray &encoded_path);

    // As it was when held.
    [[nodiscard]] const file_status &status() const { return status_; }
    [[nodiscard]] bool is_regular() const { return S_ISREG(status_.mode); }
    [[nodiscard]] bool is_folder() const { return S_ISDIR(status_.mode); }
    [[nodiscard]] bool is_link() const { return S_ISLNK(status_.mode); }

    // Opened for reading. Owned by this object; -1 on failure, with the reason in errno, and with
    // ENOENT for anything but a regular file: it would be opened for data.
    [[nodiscard]] int for_reading() const;
    // For the calls for attributes; -1 when they cannot be asked. Owned by this object.
    [[nodiscard]] int for_attributes() const;
    // A folder, opened for listing; closed on failure, with the reason in errno.
    [[nodiscard]] descriptor for_listing() const;

private:
    bool take(descriptor held, const QByteArray &encoded_path);
    [[nodiscard]] descriptor read(int flags) const;

    QByteArray path_;
    descriptor held_; // closed on a system that cannot hold, and when opened at once
    mutable descriptor read_;
    file_status status_;
};

} // namespace evidence
