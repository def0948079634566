#include "metadata/spotlight_store_places.h"

#include "evidence/files/evidence_file.h"
#include "evidence/files/file_names.h"
#include "evidence/files/system_errors.h"
#include "formats/property_list/property_list_parser.h"
#include "evidence/folders/folder_listing.h"
#include "evidence/folders/folder_walk.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

namespace metadata {

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
constexpr int max_stores = 32; // real volumes have one to three

struct listed_store
{
    QString folder;
    int rank = 0; // the lower the earlier
    double created = 0.0;
};

void rank(const formats::property_list_value &stores, listed_store *store)
{
    constexpr int whole_volume = 0;
    constexpr int part_of_volume = 1;
    constexpr int leftover = 2;
    const formats::property_list_value own =
        stores.value(store->folder.mid(store->folder.lastIndexOf(QLatin1Char('/')) + 1));
    store->rank = leftover;
    if (!own.is(formats::value_kind::dictionary))
        return;
    const bool whole = own.value(QStringLiteral("PartialPath")).text() == QLatin1String("/");
    store->rank = whole ? whole_volume : part_of_volume;
    store->created = own.value(QStringLiteral("CreationDate")).seconds_since_reference_date();
}

class store_search
{
public:
    explicit store_search(const QString &volume_root)
    {
        for (const char *place : index_folders) {
            const QString below = QString::fromLatin1(place);
            if (has_folders(volume_root, below))
                add_stores_of(volume_root + QLatin1Char('/') + below);
        }
    }

    [[nodiscard]] found_stores take() { return std::move(found_); }

private:
    void add_stores_of(const QString &index_folder)
    {
        formats::property_list_parser configuration;
        evidence::evidence_file file;
        if (file.open(index_folder + QLatin1Char('/') + QLatin1String(configuration_name)))
            configuration.parse_file(&file);
        const formats::property_list_value listed =
            configuration.root().value(QStringLiteral("Stores"));
        for (const char *parent : store_parents) {
            std::vector<listed_store> stores = stores_in(index_folder, QLatin1String(parent));
            for (listed_store &store : stores)
                rank(listed, &store);
            std::stable_sort(stores.begin(), stores.end(),
                             [](const listed_store &a, const listed_store &b) {
                                 return a.rank != b.rank ? a.rank < b.rank : a.created > b.created;
                             });
            for (const listed_store &store : stores)
                found_.folders << store.folder;
        }
    }

    std::vector<listed_store> stores_in(const QString &index_folder, const QString &parent)
    {
        std::vector<listed_store> stores;
        if (!has_folders(index_folder, parent))
            return stores;
        const QString folder = index_folder + QLatin1Char('/') + parent;
        evidence::folder_walk entries(folder, folder);
        while (static_cast<int>(stores.size()) < max_stores && entries.next()) {
            const QString path = folder + QLatin1Char('/') + evidence::decoded_name(entries.name());
            // Everything of this folder comes before what lies deeper.
            if (entries.path() != path)
                break;
            if (entries.kind() == evidence::folder_walk::entry_kind::folder && holds_store(path))
                stores.push_back({path});
        }
        if (entries.take_failed().contains(folder + QLatin1Char('/')))
            note_refused(folder, listing_error(folder));
        std::sort(stores.begin(), stores.end(),
                  [](const listed_store &a, const listed_store &b) { return a.folder < b.folder; });
        return stores;
    }

    // Whether every folder on the way is one itself and not a link that could lead out of the
    // source.
    bool has_folders(const QString &root, const QString &below)
    {
        QString path = root;
        for (const QString &name : below.split(QLatin1Char('/'))) {
            if (!has_type(path, name, S_IFDIR))
                return false;
            path += QLatin1Char('/') + name;
        }
        return true;
    }

    bool holds_store(const QString &folder)
    {
        return std::any_of(std::begin(store_files), std::end(store_files), [&](const char *name) {
            return has_type(folder, QLatin1String(name), S_IFREG);
        });
    }

    bool has_type(const QString &folder, const QString &name, mode_t type)
    {
        struct stat status = {};
        const QByteArray path = evidence::encoded_name(folder + QLatin1Char('/') + name);
        if (::lstat(path.constData(), &status) == 0)
            return (status.st_mode & S_IFMT) == type;
        note_refused(folder, errno);
        return false;
    }

    void note_refused(const QString &folder, int error)
    {
        const bool is_known =
            std::any_of(found_.refused.cbegin(), found_.refused.cend(),
                        [&](const refused_folder &known) { return known.path == folder; });
        if (evidence::is_refusal(error) && !is_known)
            found_.refused.push_back({folder, error});
    }

    // Why a folder could not be listed, or not to its end.
    static int listing_error(const QString &folder)
    {
        evidence::folder_listing listing;
        return listing.open(AT_FDCWD, evidence::encoded_name(folder).constData()) ? EIO : errno;
    }

    found_stores found_;
};

} // namespace

found_stores find_spotlight_stores(const QString &volume_root)
{
    return store_search(volume_root).take();
}

} // namespace metadata
