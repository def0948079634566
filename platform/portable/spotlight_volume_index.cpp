#include "spotlight_volume_index.h"

#include "spotlight_name.h"
#include "spotlight_store.h"
#include "spotlight_store_places.h"

#include <QDir>

#include <algorithm>
#include <new>
#include <optional>
#include <utility>

namespace platform {

namespace {

using record_number = spotlight_index::record_number;

QString folder_of(const QString &path)
{
    return path.left(path.lastIndexOf(QLatin1Char('/')));
}

QString without_trailing_slash(QString path)
{
    path = QDir::cleanPath(path);
    return path.endsWith(QLatin1Char('/')) ? folder_of(path) : path;
}

bool is_at_or_below(const QString &path, const QString &root)
{
    return path.startsWith(root) &&
           (path.size() == root.size() || path.at(root.size()) == QLatin1Char('/'));
}

// The record with the file's own number, if its name and its folder are the file's too: invented
// numbers, and numbers given anew since, do not pass.
std::optional<record_number> match_by_id(const spotlight_index &index,
                                         const file_identity &identity, const QStringList &names)
{
    const auto record = index.find_id(identity.id);
    if (!record || names.isEmpty())
        return std::nullopt;
    const spotlight_name name(names.constLast());
    // The root has a fixed number in the index, whatever the driver shows it as.
    const quint64 parent = names.size() == 1 ? spotlight_index::root_id : identity.parent_id;
    if (index.parent_id(*record) != parent || name.compare(index.name(*record)) == name_match::none)
        return std::nullopt;
    return record;
}

std::optional<record_number> match(const spotlight_index &index, const QStringList &names,
                                   const std::optional<file_identity> &identity)
{
    const std::vector<record_number> by_path = index.find_path(names);
    // Stale records share their path with the file's own.
    for (const record_number record : by_path) {
        if (identity && index.id(record) == identity->id)
            return record;
    }
    if (!by_path.empty())
        return by_path.front();
    return identity ? match_by_id(index, *identity, names) : std::nullopt;
}

} // namespace

struct spotlight_volume_index::volume_store
{
    QString folder;
    std::unique_ptr<spotlight_store> store; // null until asked, and when it cannot be used
    bool tried = false;
};

struct spotlight_volume_index::volume
{
    QString root;
    std::vector<volume_store> stores;
};

spotlight_volume_index::spotlight_volume_index(const QString &source_root,
                                               std::unique_ptr<file_identity_source> identities,
                                               std::function<bool()> should_stop)
    : root_(without_trailing_slash(source_root))
    , identities_(std::move(identities))
    , should_stop_(std::move(should_stop))
{
    if (identities_ == nullptr)
        identities_ = std::make_unique<system_file_identity>();
}

spotlight_volume_index::~spotlight_volume_index() = default;

// Looks upwards for the first folder with a store, at most up to the source's root.
spotlight_volume_index::volume *spotlight_volume_index::volume_of(const QString &folder)
{
    if (!is_at_or_below(folder, root_))
        return nullptr;
    const auto known = volume_of_folder_.constFind(folder);
    if (known != volume_of_folder_.constEnd())
        return *known;
    volume *found = nullptr;
    const QStringList stores = spotlight_store_folders(folder);
    if (!stores.isEmpty()) {
        volumes_.push_back(std::make_unique<volume>());
        found = volumes_.back().get();
        found->root = folder;
        for (const QString &store : stores)
            found->stores.push_back({store, nullptr, false});
    } else if (folder.size() > root_.size()) {
        found = volume_of(folder_of(folder));
    }
    volume_of_folder_.insert(folder, found);
    return found;
}

bool spotlight_volume_index::load(volume_store *store)
{
    if (store->tried)
        return store->store != nullptr;
    store->tried = true;
    const QString shown = store->folder.mid(root_.size());
    auto opened = std::make_unique<spotlight_store>(
        std::make_unique<evidence_byte_folder>(store->folder), shown);
    bool usable = false;
    try {
        usable = opened->load(should_stop_);
    } catch (const std::bad_alloc &) {
        notes_ << shown + QStringLiteral(": the memory does not hold this index");
    }
    if (usable)
        notes_ << shown + QStringLiteral(": Spotlight index with %1 records")
                              .arg(opened->index().size());
    notes_ << opened->reasons();
    if (usable)
        store->store = std::move(opened);
    return usable;
}

std::shared_ptr<const spotlight_attributes> spotlight_volume_index::attributes(const QString &path)
{
    if (path != last_path_ || path.isEmpty()) {
        last_attributes_ = look_up(path);
        last_path_ = path;
    }
    return last_attributes_;
}

std::shared_ptr<const spotlight_attributes> spotlight_volume_index::look_up(const QString &path)
{
    const QString file = without_trailing_slash(path);
    if (!is_at_or_below(file, root_))
        return nullptr;
    volume *const own = volume_of(file.size() > root_.size() ? folder_of(file) : file);
    if (own == nullptr)
        return nullptr;
    const QStringList names =
        file.mid(own->root.size()).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    const std::optional<file_identity> identity = identities_->identify(file, own->root);
    for (volume_store &store : own->stores) {
        if (!load(&store))
            continue;
        if (const auto record = match(store.store->index(), names, identity))
            return store.store->attributes(*record);
    }
    return nullptr;
}

std::optional<spotlight_value> spotlight_volume_index::value(const QString &path,
                                                             const QString &public_name)
{
    const auto record = attributes(path);
    return record == nullptr ? std::nullopt : record->value(public_name);
}

QStringList spotlight_volume_index::take_notes()
{
    return std::exchange(notes_, {});
}

} // namespace platform
