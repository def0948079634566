#include "folder_size.h"

#include "evidence_file.h"
#include "file_names.h"

#include <QByteArray>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <limits>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace support {

namespace {

using folder_identity = std::pair<dev_t, ino_t>;

constexpr int folder_flags = O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

struct listing_closer
{
    void operator()(DIR *stream) const { ::closedir(stream); }
};
using open_listing = std::unique_ptr<DIR, listing_closer>;

// Null when the folder may not be listed or is no folder any more.
open_listing list_folder(int parent, const char *name)
{
    const int descriptor = open_unchanged(parent, name, folder_flags);
    if (descriptor < 0)
        return nullptr;
    open_listing listing(::fdopendir(descriptor));
    if (!listing)
        ::close(descriptor);
    return listing;
}

// The next name but "." and ".."; null after the last.
const char *next_name(DIR *stream)
{
    while (const dirent *entry = ::readdir(stream)) {
        const QLatin1String name(entry->d_name);
        if (name != QLatin1String(".") && name != QLatin1String(".."))
            return entry->d_name;
    }
    return nullptr;
}

folder_identity identity_of(DIR *stream)
{
    struct stat status = {};
    if (::fstat(::dirfd(stream), &status) != 0)
        return {};
    return {status.st_dev, status.st_ino};
}

enum class walk_end { complete, cancelled, tree_changed };

// Walks down and up again with the names still to be visited per level, not with a descriptor per
// level: the way up is "..", checked to lead where the way down came from.
class size_walk
{
public:
    explicit size_walk(const std::atomic<bool> &cancelled)
        : cancelled_(cancelled)
    {
    }

    walk_end run(const char *folder)
    {
        open_listing top = list_folder(AT_FDCWD, folder);
        if (!top)
            return walk_end::complete;
        if (!enter(std::move(top)))
            return walk_end::cancelled;
        while (!levels_.empty()) {
            if (levels_.back().unvisited.empty()) {
                if (!leave())
                    return walk_end::tree_changed;
                continue;
            }
            const QByteArray name = std::move(levels_.back().unvisited.back());
            levels_.back().unvisited.pop_back();
            open_listing child = list_folder(::dirfd(current_.get()), name.constData());
            if (child && !enter(std::move(child)))
                return walk_end::cancelled;
        }
        return walk_end::complete;
    }

    [[nodiscard]] qint64 size_bytes() const { return size_bytes_; }

private:
    struct level
    {
        folder_identity identity;
        std::vector<QByteArray> unvisited; // names of folders
    };

    // Counts the files of a folder and goes on inside it if it has folders; false when cancelled.
    bool enter(open_listing folder)
    {
        level found;
        found.identity = identity_of(folder.get());
        // A damaged file system can hold a folder inside itself.
        if (on_the_way_.count(found.identity) > 0)
            return true;
        while (const char *name = next_name(folder.get())) {
            if (cancelled_)
                return false;
            struct stat status = {};
            if (::fstatat(::dirfd(folder.get()), name, &status, AT_SYMLINK_NOFOLLOW) != 0)
                continue;
            if (S_ISREG(status.st_mode))
                add(status.st_size);
            else if (S_ISDIR(status.st_mode))
                found.unvisited.emplace_back(name);
        }
        if (found.unvisited.empty())
            return true;
        on_the_way_.insert(found.identity);
        levels_.push_back(std::move(found));
        current_ = std::move(folder);
        return true;
    }

    // Back to the folder above; false when it is not there any more.
    bool leave()
    {
        on_the_way_.erase(levels_.back().identity);
        levels_.pop_back();
        if (levels_.empty())
            return true;
        open_listing above = list_folder(::dirfd(current_.get()), "..");
        if (!above || identity_of(above.get()) != levels_.back().identity)
            return false;
        current_ = std::move(above);
        return true;
    }

    void add(qint64 file_bytes)
    {
        // Sparse files can claim more together than 64 bits count.
        const qint64 room = std::numeric_limits<qint64>::max() - size_bytes_;
        size_bytes_ += qBound(qint64{0}, file_bytes, room);
    }

    const std::atomic<bool> &cancelled_;
    open_listing current_;
    std::vector<level> levels_;
    std::set<folder_identity> on_the_way_;
    qint64 size_bytes_ = 0;
};

} // namespace

std::optional<qint64> size_of(const QString &path, const std::atomic<bool> &cancelled)
{
    QByteArray encoded = support::encoded_name(path);
    // With a "/" behind it a link would be followed.
    while (encoded.size() > 1 && encoded.endsWith('/'))
        encoded.chop(1);
    struct stat status = {};
    if (encoded.contains('\0') || ::lstat(encoded.constData(), &status) != 0)
        return std::nullopt;
    if (S_ISREG(status.st_mode))
        return status.st_size;
    if (S_ISLNK(status.st_mode))
        return std::nullopt;
    if (!S_ISDIR(status.st_mode))
        return 0;
    size_walk walk(cancelled);
    switch (walk.run(encoded.constData())) {
    case walk_end::cancelled:
        return status.st_size;
    case walk_end::tree_changed:
        return std::nullopt;
    case walk_end::complete:
        break;
    }
    return walk.size_bytes();
}

} // namespace support
