// Where the stores of a volume lie.
#pragma once

#include <QStringList>

namespace platform {

// Folders with a store that index the volume whose root is `volume_root` (reachable here, free of
// links), in the order in which they are to be asked: those that the volume's own list names, the
// ones for the whole volume first, then leftovers; folders of old versions last. Links are not
// followed. Empty when there is none, or none that may be read. Indexes that programs keep of
// their own things are never among them.
[[nodiscard]] QStringList spotlight_store_folders(const QString &volume_root);

} // namespace platform
