#include "evidence/folders/folder_size.h"

#include "evidence/files/file_names.h"
#include "evidence/folders/folder_listing.h"

#include <QByteArray>

#include <fcntl.h>
#include <sys/stat.h>

#include <limits>
#include <set>
#include <utility>
#include <vector>

namespace evidence {

namespace {

enum class walk_end { complete, cancelled, tree_changed, not_listed };

// Walks down and up again with the names still to be visited per level, not with a descriptor per
// level: the way up is "..", checked to lead where the way down came from.
class size_walk
{
public:
    explicit size_walk(const run::cancellation &cancelled)
        : cancelled_(cancelled)
    {
    }

    walk_end run(const held_file &folder)
    {
        folder_listing top;
        if (!top.open(folder)) {
            note_left_out();
            return walk_end::not_listed;
        }
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
            folder_listing child;
            if (!child.open(current_.descriptor(), name.constData()))
                note_left_out(name);
            else if (!enter(std::move(child), name))
                return walk_end::cancelled;
        }
        return walk_end::complete;
    }

    [[nodiscard]] qint64 size_bytes() const { return size_bytes_; }
    // The first folder that was left out, from the top folder on; nullopt when there was none.
    [[nodiscard]] const std::optional<QByteArray> &left_out() const { return left_out_; }

private:
    struct level
    {
        QByteArray name; // in the folder above; empty at the top
        folder_identity identity;
        std::vector<QByteArray> unvisited; // names of folders
    };

    // Counts the files of a folder and goes on inside it if it has folders; false when cancelled.
    bool enter(folder_listing folder, const QByteArray &name = {})
    {
        level found;
        found.name = name;
        found.identity = folder.identity();
        // A damaged file system can hold a folder inside itself.
        if (on_the_way_.count(found.identity) > 0)
            return true;
        while (const dirent *entry = folder.next()) {
            if (cancelled_.is_requested())
                return false;
            struct stat status = {};
            if (::fstatat(folder.descriptor(), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
                continue;
            if (S_ISREG(status.st_mode))
                add(status.st_size);
            else if (S_ISDIR(status.st_mode))
                found.unvisited.emplace_back(entry->d_name);
        }
        if (folder.is_cut())
            note_left_out(name);
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
        folder_listing above;
        if (!above.open(current_.descriptor(), "..") || above.identity() != levels_.back().identity)
            return false;
        current_ = std::move(above);
        return true;
    }

    // Keeps the way to the first folder that is not counted, or not to its end.
    void note_left_out(const QByteArray &name = {})
    {
        if (left_out_)
            return;
        QByteArray way;
        for (const level &above : levels_)
            way += above.name.isEmpty() ? QByteArray() : above.name + '/';
        left_out_ = way + name;
    }

    void add(qint64 file_bytes)
    {
        // Sparse files can claim more together than 64 bits count.
        const qint64 room = std::numeric_limits<qint64>::max() - size_bytes_;
        size_bytes_ += qBound(qint64{0}, file_bytes, room);
    }

    const run::cancellation &cancelled_;
    folder_listing current_;
    std::vector<level> levels_;
    std::set<folder_identity> on_the_way_;
    qint64 size_bytes_ = 0;
    std::optional<QByteArray> left_out_;
};

} // namespace

tree_size size_of(const held_file &top, const QString &path, const run::cancellation &cancelled)
{
    if (top.is_link())
        return {};
    if (top.is_regular())
        return {top.status().size, {}};
    if (!top.is_folder())
        return {0, {}};
    size_walk walk(cancelled);
    const walk_end end = walk.run(top);
    tree_size size;
    if (end == walk_end::cancelled)
        size.bytes = top.status().size;
    if (end == walk_end::complete)
        size.bytes = walk.size_bytes();
    if (walk.left_out())
        size.left_out = walk.left_out()->isEmpty()
                            ? path
                            : path + QLatin1Char('/') + decoded_name(*walk.left_out());
    return size;
}

tree_size size_of(const QString &path, const run::cancellation &cancelled)
{
    QString named = path;
    while (named.size() > 1 && named.endsWith(QLatin1Char('/')))
        named.chop(1);
    held_file top;
    return top.hold_named_by_host(encoded_name(named)) ? size_of(top, named, cancelled)
                                                       : tree_size();
}

} // namespace evidence
