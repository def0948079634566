#include "metadata/spotlight_volume_index.h"

#include "formats/spotlight_store/tables/spotlight_name.h"
#include "formats/spotlight_store/spotlight_store.h"
#include "metadata/spotlight_store_places.h"
#include "evidence/files/byte_source.h"
#include "evidence/files/file_names.h"
#include "evidence/files/system_errors.h"

#include <QDir>

#include <algorithm>
#include <cerrno>
#include <new>
#include <optional>
#include <utility>

namespace metadata {

namespace {

using record_number = formats::spotlight_index::record_number;

constexpr size_t max_volumes = 64;

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
std::optional<record_number> match_by_id(const formats::spotlight_index &index,
                                         const evidence::file_identity &identity,
                                         const QStringList &names)
{
    const auto record = index.find_id(identity.id);
    if (!record || names.isEmpty())
        return std::nullopt;
    const formats::spotlight_name name(names.constLast());
    // The root has a fixed number in the index, whatever the driver shows it as.
    const quint64 parent =
        names.size() == 1 ? formats::spotlight_index::root_id : identity.parent_id;
    if (index.parent_id(*record) != parent ||
        name.compare(index.name(*record)) == formats::name_match::none)
        return std::nullopt;
    return record;
}

std::optional<record_number> match(const formats::spotlight_index &index, const QStringList &names,
                                   const std::optional<evidence::file_identity> &identity)
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

// The files of a store's folder but those that were read before.
class unseen_files final : public evidence::byte_folder
{
public:
    unseen_files(QString path, std::set<std::pair<dev_t, ino_t>> *seen)
        : path_(std::move(path))
        , seen_(seen)
    {
    }

    [[nodiscard]] std::unique_ptr<evidence::byte_source> open(const QString &name,
                                                              int *error) const override
    {
        auto held = std::make_shared<evidence::held_file>();
        evidence::evidence_file file;
        if (!held->hold(evidence::encoded_name(path_ + QLatin1Char('/') + name)) ||
            !file.open(held)) {
            *error = errno;
            return nullptr;
        }
        *error = ENOENT;
        if (!seen_->insert({held->status().device, held->status().inode}).second)
            return nullptr;
        return std::make_unique<evidence::evidence_byte_source>(std::move(file));
    }

private:
    QString path_;
    std::set<std::pair<dev_t, ino_t>> *seen_;
};

} // namespace

struct spotlight_volume_index::volume_store
{
    QString folder;
    std::unique_ptr<formats::spotlight_store> store; // null until asked, and when it cannot be used
    bool tried = false;
};

struct spotlight_volume_index::volume
{
    QString root;
    std::vector<volume_store> stores;
};

spotlight_volume_index::spotlight_volume_index(
    const QString &source_root, std::unique_ptr<evidence::file_identity_source> identities,
    const run::cancellation &cancelled)
    : root_(without_trailing_slash(source_root))
    , identities_(std::move(identities))
    , budget_(cancelled)
{
    if (identities_ == nullptr)
        identities_ = std::make_unique<evidence::system_file_identity>();
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
    const found_stores stores = find_spotlight_stores(folder);
    for (const refused_folder &refused : stores.refused)
        notes_ << refused.path.mid(root_.size()) +
                      QStringLiteral("/: not readable, no Spotlight index is taken from there: ") +
                      evidence::system_error_text(refused.error);
    const bool is_volume = !stores.folders.isEmpty();
    if (is_volume && volumes_.size() >= max_volumes && !std::exchange(told_of_volumes_, true))
        notes_ << QStringLiteral("too many volumes with an index, the others are left out");
    if (is_volume && volumes_.size() < max_volumes) {
        volumes_.push_back(std::make_unique<volume>());
        found = volumes_.back().get();
        found->root = folder;
        for (const QString &store : stores.folders)
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
    auto opened = std::make_unique<formats::spotlight_store>(
        std::make_unique<unseen_files>(store->folder, &seen_files_), shown, &budget_);
    bool usable = false;
    try {
        usable = opened->load();
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

std::shared_ptr<const formats::spotlight_attributes>
spotlight_volume_index::attributes(const QString &path)
{
    if (path != last_path_ || path.isEmpty()) {
        last_attributes_ = look_up(path);
        last_path_ = path;
    }
    return last_attributes_;
}

std::shared_ptr<const formats::spotlight_attributes>
spotlight_volume_index::look_up(const QString &path)
{
    const QString file = without_trailing_slash(path);
    if (!is_at_or_below(file, root_))
        return nullptr;
    volume *const own = volume_of(file.size() > root_.size() ? folder_of(file) : file);
    if (own == nullptr)
        return nullptr;
    const QStringList names =
        file.mid(own->root.size()).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    const std::optional<evidence::file_identity> identity = identities_->identify(file, own->root);
    budget_.grant_question();
    for (volume_store &store : own->stores) {
        if (!load(&store) || !budget_.charge(formats::spotlight_object_units * (names.size() + 1)))
            continue;
        if (const auto record = match(store.store->index(), names, identity))
            return store.store->attributes(*record);
    }
    if (budget_.is_spent() && !std::exchange(told_of_budget_, true))
        notes_ << QStringLiteral("the indexes cost more than honest ones, not asked any more");
    return nullptr;
}

std::optional<formats::spotlight_value> spotlight_volume_index::value(const QString &path,
                                                                      const QString &public_name)
{
    const auto record = attributes(path);
    return record == nullptr ? std::nullopt : record->value(public_name);
}

QStringList spotlight_volume_index::take_notes()
{
    return std::exchange(notes_, {});
}

} // namespace metadata
