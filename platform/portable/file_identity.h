// What the file system says which file a path is, where that can be held against an index.
#pragma once

#include <QHash>
#include <QString>

#include <optional>

namespace platform {

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
    QHash<quint64, bool> keeps_ids_; // by device
};

} // namespace platform
