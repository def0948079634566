#include "evidence/files/file_identity.h"

#include "evidence/access/held_file.h"
#include "evidence/files/file_names.h"

#include <QFileInfo>
#include <QStorageInfo>

namespace evidence {

namespace {

// This machine's names of the file systems whose inode numbers are the volume's own.
constexpr const char *file_systems_with_ids[] = {"hfs", "hfsplus", "apfs", "fuse", "fuseblk"};

bool look_at(const QString &path, file_status *status)
{
    held_file held;
    if (!held.hold(encoded_name(path)))
        return false;
    *status = held.status();
    return true;
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

std::optional<dev_t> system_file_identity::device_with_ids(const QString &volume_root)
{
    const auto known = devices_.constFind(volume_root);
    if (known != devices_.constEnd())
        return *known;
    file_status root;
    std::optional<dev_t> device;
    if (look_at(volume_root, &root) && has_ids(QStorageInfo(volume_root).fileSystemType()))
        device = root.device;
    devices_.insert(volume_root, device);
    return device;
}

std::optional<file_identity> system_file_identity::identify(const QString &path,
                                                            const QString &volume_root)
{
    const std::optional<dev_t> device = device_with_ids(volume_root);
    file_status file;
    if (!device || !look_at(path, &file) || file.device != *device)
        return std::nullopt;
    const QString folder = QFileInfo(path).path();
    if (folder != last_folder_) {
        if (!look_at(folder, &last_folder_status_))
            return std::nullopt;
        last_folder_ = folder;
    }
    return file_identity{static_cast<quint64>(file.inode),
                         static_cast<quint64>(last_folder_status_.inode)};
}

} // namespace evidence
