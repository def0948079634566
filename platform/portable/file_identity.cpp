#include "file_identity.h"

#include "support/file_names.h"

#include <QFileInfo>
#include <QStorageInfo>

#include <sys/stat.h>

namespace platform {

namespace {

// As this machine names file systems whose inode numbers are the volume's own.
constexpr const char *file_systems_with_ids[] = {"hfs", "hfsplus", "apfs", "fuse", "fuseblk"};

bool status_of(const QString &path, struct stat *status)
{
    return ::lstat(support::encoded_name(path).constData(), status) == 0;
}

bool has_ids(const QByteArray &file_system)
{
    for (const char *name : file_systems_with_ids) {
        if (file_system == name)
            return true;
    }
    return file_system.startsWith("fuse."); // with the driver's name behind
}

} // namespace

std::optional<file_identity> system_file_identity::identify(const QString &path,
                                                            const QString &volume_root)
{
    struct stat file = {};
    struct stat folder = {};
    struct stat root = {};
    if (!status_of(path, &file) || !status_of(QFileInfo(path).path(), &folder) ||
        !status_of(volume_root, &root) || file.st_dev != root.st_dev)
        return std::nullopt;
    const auto device = static_cast<quint64>(root.st_dev);
    if (!keeps_ids_.contains(device))
        keeps_ids_.insert(device, has_ids(QStorageInfo(volume_root).fileSystemType()));
    if (!keeps_ids_.value(device))
        return std::nullopt;
    return file_identity{static_cast<quint64>(file.st_ino), static_cast<quint64>(folder.st_ino)};
}

} // namespace platform
