// Keeps every access inside the examined source: links are followed as the examined machine would
// have followed them, never out of the source.
#pragma once

#include "evidence/access/descriptor.h"
#include "evidence/access/held_file.h"
#include "evidence/folders/folder_contents.h"
#include "evidence/folders/similar_names.h"
#include "run/cancellation.h"

#include <QByteArray>
#include <QCache>
#include <QString>

#include <memory>
#include <optional>

namespace evidence {

// Where a path leads. `denied`: a folder on the way may not be searched, so nobody can tell.
// `ambiguous`: a folder on the way has no entry of that name, and several that differ from it in
// the case of letters only. `costly`: the way was not walked to its end, because it is far longer
// than any honest one and too many such ways were asked for.
enum class reach { inside, missing, outside, denied, ambiguous, costly };

struct resolved_path
{
    reach where = reach::missing;
    // Inside: free of links, reachable here. Denied: the folder that refused, as the host names it.
    // Else null.
    QString path;
    // Of hold() only, and only inside.
    std::shared_ptr<const held_file> file;
    std::shared_ptr<const folder_contents> folder; // that it lies in; null when not listed
};

// What finding ways may cost in the life of one boundary.
struct boundary_limits
{
    qint64 steps = 1'000'000;       // for ways of more steps than each path is granted
    qint64 granted_steps = 64;      // free for each path
    int remembered_bytes = 8 << 20; // of folders' paths, as asked for and as found
};

class source_boundary
{
public:
    // `root`: where the source's file system is reachable, as the host names it. Links on the way
    // to it are the host's own and are followed. Once `cancelled`, what is spelled in another way
    // counts as missing: callers look at the flag before they believe a failure.
    explicit source_boundary(const QString &root, run::cancellation cancelled = {},
                             const boundary_limits &limits = {});
    ~source_boundary();

    // The root's folder, free of links, with a trailing "/"; null when there is none.
    [[nodiscard]] QString real_root() const;

    // Resolves `path`, which must start with the root, component by component. Each component is
    // looked up in its open folder, so no link can lead the system itself out of the source.
    // - A relative link counts from its folder. An absolute one counts from the source's own root
    //   (/Users/... is looked up below the root), or stands as it is if it names a place inside the
    //   source as seen from this machine.
    // - `outside`: ".." or a link leaves the source, or the path does not start inside.
    // - A name that a folder does not have stands for the entry that the examined Mac would take it
    //   for (similar_names.h). `missing` when there is none, `denied` when nobody can tell.
    // - At most 40 links are followed, as the system does. A path of more than 4,096 bytes below
    //   the root, or of as many names, is `missing`: no file can be opened by it.
    // Ways to folders are remembered, so the next file of a folder costs one look only. Not
    // thread-safe.
    [[nodiscard]] resolved_path resolve(const QString &path) const;
    // The same, and holds the file that was found. A folder of which several files are held is
    // listed once, so that what is known of all its names needs no call for each.
    [[nodiscard]] resolved_path hold(const QString &path) const;
    // Where `path` leads, or would lead if what is missing on the way were made. Null outside.
    [[nodiscard]] QString place_of(const QString &path) const;
    // Whether the search for other spellings of a name was given up, because it cost more than one
    // run may.
    [[nodiscard]] bool left_names_out() const { return similar_names_.is_spent(); }

private:
    class walk;
    struct way
    {
        reach where = reach::missing;
        QByteArray names; // below the root, free of links; when denied, those of the folder
    };

    // A path below the root as it is stored there; null with the reason when there is none.
    [[nodiscard]] std::optional<QByteArray> below_root(const QString &path, reach *why_not) const;
    [[nodiscard]] resolved_path resolve_below(const QByteArray &below_root, held_file *file) const;
    [[nodiscard]] resolved_path found(const way &found) const;
    // Once enough of its files were asked for.
    void list_open_folder() const;
    // Opens what it finds, if that is a folder.
    [[nodiscard]] way find_folder(const QByteArray &below_root, descriptor *folder) const;
    [[nodiscard]] way find(const QByteArray &below_root) const;
    // An entry of the open folder; nullopt for a link and for what needs a walk of its own. Holds
    // it unless `file` is null.
    [[nodiscard]] std::optional<way> entry_of_open_folder(const QByteArray &name,
                                                          held_file *file) const;
    // Returns the entry's kind; 0 with the reason in errno when there is none.
    [[nodiscard]] mode_t look_at(const QByteArray &name, held_file *file) const;
    [[nodiscard]] descriptor open_below(const QByteArray &names) const;
    [[nodiscard]] QByteArray real_path(const QByteArray &names) const;

    QByteArray root_;      // as given, encoded, with a trailing "/"
    QByteArray real_root_; // free of links, with a trailing "/"; empty when there is no such folder
    descriptor root_folder_;
    run::cancellation cancelled_;
    boundary_limits limits_;
    mutable similar_names similar_names_;
    mutable qint64 steps_left_;
    mutable QCache<QByteArray, way> ways_; // to folders, by their path as asked for
    // The folder that was asked for last.
    mutable QByteArray open_asked_;
    mutable way open_way_;
    mutable descriptor open_folder_;
    mutable int asked_in_folder_ = 0; // files held
    mutable std::shared_ptr<const folder_contents> contents_;
};

} // namespace evidence
