// The entries of one folder, in the file system's order. The one place that lists a folder.
#pragma once

#include "evidence/access/held_file.h"

#include "run/cancellation.h"

#include <QtGlobal>

#include <dirent.h>
#include <sys/types.h>

#include <memory>
#include <optional>
#include <utility>

namespace evidence {

using folder_identity = std::pair<dev_t, ino_t>;

// Read-only; opening changes no access time where the system allows. Movable, closes itself.
class folder_listing
{
public:
    folder_listing() = default;

    // Opens `name` inside the open folder `parent` (AT_FDCWD for a whole path), unless it or a
    // folder on its way is a link. False, and closed, when it may not be listed or is no folder.
    bool open(int parent, const char *name);
    bool open(const held_file &held);
    [[nodiscard]] bool is_open() const { return stream_ != nullptr; }
    void close() { stream_.reset(); }

    // The next entry but "." and ".."; null at the end, and when the rest cannot be read.
    const dirent *next();
    // Whether the last step ended the listing before its end.
    [[nodiscard]] bool is_cut() const { return is_cut_; }
    // The open folder, for the calls that take one.
    [[nodiscard]] int descriptor() const { return ::dirfd(stream_.get()); }
    [[nodiscard]] folder_identity identity() const;

private:
    bool take(evidence::descriptor opened);

    struct stream_closer
    {
        void operator()(DIR *stream) const { ::closedir(stream); }
    };

    std::unique_ptr<DIR, stream_closer> stream_;
    bool is_cut_ = false;
};

// Number of entries of a folder, "." and ".." not counted; nullopt when it cannot be read, or holds
// more than ten million, or the run is cancelled meanwhile.
[[nodiscard]] std::optional<qint64> folder_entry_count(const held_file &folder,
                                                       const run::cancellation &cancelled = {});

} // namespace evidence
