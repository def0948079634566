// Where the stores of a volume lie.
#pragma once

#include <QStringList>

#include <vector>

namespace metadata {

// A folder in which there may be a store, but that may not be looked into.
struct refused_folder
{
    QString path;
    int error = 0; // the system's number for the reason
};

struct found_stores
{
    // In the order in which they are to be asked: those that the volume's own list names, the ones
    // for the whole volume first, then leftovers; folders of old versions last.
    QStringList folders;
    std::vector<refused_folder> refused; // each once
};

// Folders with a store that index the volume whose root is `volume_root` (reachable here, free of
// links). Links are not followed. Indexes that programs keep of their own things are never among
// them.
[[nodiscard]] found_stores find_spotlight_stores(const QString &volume_root);

} // namespace metadata
