// Keeps every access inside the examined source: links are followed as the examined machine would
// have followed them, never out of the source.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace support {

// Where a path leads; `denied`: a folder on the way does not let its entries be looked up, so that
// nobody can tell.
enum class reach { inside, missing, outside, denied };

struct resolved_path
{
    reach where = reach::missing;
    // Free of links, reachable here; when denied, the folder that refused; else null.
    QString path;
};

class source_boundary
{
public:
    // `root`: where the source's file system is reachable, as the host names it.
    explicit source_boundary(const QString &root);

    // Resolves `path`, which must start with the root, component by component. A relative link
    // counts from its folder, an absolute one from the source's own root (/Users/... is looked up
    // below the root) or, if it names a place inside the source as seen from this machine, from
    // there. `outside` when ".." or a link leaves the source, or the path does not start inside.
    // `missing` when a component does not exist, `denied` when that cannot be told. At most 40
    // links are followed, as by the system, and a path of more than 4,096 bytes below the root, or
    // of as many names, is missing: no file can be opened by it.
    // The folder that was resolved last is remembered: of its next file only the last component is
    // looked at, which takes 2 µs instead of 8. Not thread-safe.
    [[nodiscard]] resolved_path resolve(const QString &path) const;

private:
    class walk;
    struct resolved_folder
    {
        QByteArray below_root; // as it was asked for
        reach where = reach::missing;
        QByteArray path; // free of links
    };

    [[nodiscard]] resolved_path resolve_below(const QByteArray &below_root) const;
    // The same without what is remembered.
    [[nodiscard]] resolved_path find(const QByteArray &below_root) const;

    mutable std::optional<resolved_folder> last_folder_;
    QByteArray root_;      // as given, encoded, with a trailing "/"
    QByteArray real_root_; // free of links, with a trailing "/"; empty when there is no such folder
};

} // namespace support
