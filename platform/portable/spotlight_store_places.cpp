#include "spotlight_store_places.h"

#include "support/file_names.h"
#include "platform/property_list.h"
#include "support/folder_walk.h"

#include <sys/stat.h>

#include <algorithm>
#include <vector>

namespace platform {

namespace {

// The volume's own index; that of the data volume, for a source that holds a running system's whole
// tree; that of the sealed system volume.
constexpr const char *index_folders[] = {
    ".Spotlight-V100",
    "System/Volumes/Data/.Spotlight-V100",
    "private/var/db/Spotlight-V100/BootVolume",
};
constexpr const char *store_parents[] = {"Store-V2", "Store-V1", "Store-V1/Stores"};
constexpr const char *store_files[] = {"store.db", ".store.db"};
constexpr char configuration_name[] = "VolumeConfiguration.plist";
constexpr int most_stores = 32; // real volumes have one to three

struct listed_store
{
    QString folder;
    int rank = 0; // the lower the earlier
    double created = 0.0;
};

bool has_type(const QString &path, mode_t type)
{
    struct stat status = {};
    return ::lstat(support::encoded_name(path).constData(), &status) == 0 &&
           (status.st_mode & S_IFMT) == type;
}

// Whether every folder on the way is one itself and not a link that could lead out of the source.
bool has_folders(const QString &root, const QString &below)
{
    QString path = root;
    for (const QString &name : below.split(QLatin1Char('/'))) {
        path += QLatin1Char('/') + name;
        if (!has_type(path, S_IFDIR))
            return false;
    }
    return true;
}

bool holds_store(const QString &folder)
{
    return std::any_of(std::begin(store_files), std::end(store_files), [&](const char *name) {
        return has_type(folder + QLatin1Char('/') + QLatin1String(name), S_IFREG);
    });
}

void rank(const property_list_value &stores, listed_store *store)
{
    constexpr int whole_volume = 0;
    constexpr int part_of_volume = 1;
    constexpr int leftover = 2;
    const property_list_value own =
        stores.value(store->folder.mid(store->folder.lastIndexOf(QLatin1Char('/')) + 1));
    store->rank = leftover;
    if (!own.is(value_kind::dictionary))
        return;
    const bool whole = own.value(QStringLiteral("PartialPath")).text() == QLatin1String("/");
    store->rank = whole ? whole_volume : part_of_volume;
    store->created = own.value(QStringLiteral("CreationDate")).seconds_since_reference_date();
}

std::vector<listed_store> stores_in(const QString &index_folder, const QString &parent)
{
    std::vector<listed_store> found;
    if (!has_folders(index_folder, parent))
        return found;
    const QString folder = index_folder + QLatin1Char('/') + parent;
    support::folder_walk entries(folder, folder);
    while (static_cast<int>(found.size()) < most_stores && entries.next()) {
        const QString path = folder + QLatin1Char('/') + support::decoded_name(entries.name());
        // Everything of this folder comes before what lies deeper.
        if (entries.path() != path)
            break;
        if (entries.kind() == support::folder_walk::entry_kind::folder && holds_store(path))
            found.push_back({path});
    }
    std::sort(found.begin(), found.end(),
              [](const listed_store &a, const listed_store &b) { return a.folder < b.folder; });
    return found;
}

QStringList stores_of(const QString &index_folder)
{
    property_list configuration;
    configuration.load(index_folder + QLatin1Char('/') + QLatin1String(configuration_name));
    const property_list_value listed = configuration.root().value(QStringLiteral("Stores"));
    QStringList folders;
    for (const char *parent : store_parents) {
        std::vector<listed_store> stores = stores_in(index_folder, QLatin1String(parent));
        for (listed_store &store : stores)
            rank(listed, &store);
        std::stable_sort(stores.begin(), stores.end(),
                         [](const listed_store &a, const listed_store &b) {
                             return a.rank != b.rank ? a.rank < b.rank : a.created > b.created;
                         });
        for (const listed_store &store : stores)
            folders << store.folder;
    }
    return folders;
}

} // namespace

QStringList spotlight_store_folders(const QString &volume_root)
{
    QStringList folders;
    for (const char *place : index_folders) {
        const QString below = QString::fromLatin1(place);
        if (has_folders(volume_root, below))
            folders << stores_of(volume_root + QLatin1Char('/') + below);
    }
    return folders;
}

} // namespace platform
