// The numbers by which the file system knows a file, where they can be compared with those of an
// index.
#pragma once

#include "evidence/access/file_status.h"

#include <QHash>
#include <QString>

#include <optional>

namespace evidence {

// The numbers that the volume itself gave to the file and to its folder.
struct file_identity
{
    quint64 id = 0;
    quint64 parent_id = 0;
};

class file_identity_source
{
public:
    virtual ~file_identity_source() = default;
    // Nullopt when the numbers are not those of the volume: the file lies on a file system of
    // another kind (copies have numbers of their own), on another volume than `volume_root`, or is
    // not there.
    [[nodiscard]] virtual std::optional<file_identity> identify(const QString &path,
                                                                const QString &volume_root) = 0;
};

// Asks this machine's file systems. HFS+ and APFS drivers count, those in user space too.
class system_file_identity final : public file_identity_source
{
public:
    [[nodiscard]] std::optional<file_identity> identify(const QString &path,
                                                        const QString &volume_root) override;

private:
    // Nullopt when the numbers of its files are not those of the volume.
    [[nodiscard]] std::optional<dev_t> device_with_ids(const QString &volume_root);

    QHash<QString, std::optional<dev_t>> devices_; // by root of the volume
    QString last_folder_;
    file_status last_folder_status_;
};

} // namespace evidence
