// Answers for the files of a source from the indexes of its volumes.
#pragma once

#include "evidence/files/file_identity.h"
#include "formats/spotlight_store/blocks/spotlight_budget.h"
#include "formats/spotlight_store/spotlight_attributes.h"
#include "run/cancellation.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace metadata {

// Nothing is read until the first question. A volume's stores are then looked for and indexed once;
// what was found, or that there is none, is kept as long as this object. A file is matched by its
// path; by its number only where the file system gives the volume's own numbers and name and folder
// agree; never by its name alone. Never writes. Not thread-safe.
//
// All indexes share one budget. A file of an index that is met again, as by a hard link, is not
// read again.
class spotlight_volume_index
{
public:
    // `source_root`: absolute, free of links; nothing outside is looked at. `identities`: null for
    // those of this machine. `cancelled`: asked while a store is read, true ends the reading and
    // the store gives no answers; may be null.
    explicit spotlight_volume_index(
        const QString &source_root,
        std::unique_ptr<evidence::file_identity_source> identities = nullptr,
        const run::cancellation &cancelled = {});
    ~spotlight_volume_index();
    spotlight_volume_index(const spotlight_volume_index &) = delete;
    spotlight_volume_index &operator=(const spotlight_volume_index &) = delete;

    // What the index says of the file at `path` (absolute, free of links). Null when no index knows
    // it. Of the last file asked for it is kept, so asking again costs nothing.
    [[nodiscard]] std::shared_ptr<const formats::spotlight_attributes>
    attributes(const QString &path);
    // One attribute of it, by its public name.
    [[nodiscard]] std::optional<formats::spotlight_value> value(const QString &path,
                                                                const QString &public_name);

    // Lines for the log since the last call: each store in use, and why one or a part of one is
    // not. Each comes up once.
    [[nodiscard]] QStringList take_notes();

private:
    struct volume_store;
    struct volume;

    [[nodiscard]] volume *volume_of(const QString &folder);
    [[nodiscard]] bool load(volume_store *store);
    [[nodiscard]] std::shared_ptr<const formats::spotlight_attributes> look_up(const QString &path);

    QString root_; // without a trailing "/"; empty for the file system's root
    std::unique_ptr<evidence::file_identity_source> identities_;
    formats::spotlight_budget budget_;
    std::set<std::pair<dev_t, ino_t>> seen_files_;
    std::vector<std::unique_ptr<volume>> volumes_;
    QHash<QString, volume *> volume_of_folder_; // null where there is none
    QStringList notes_;
    bool told_of_volumes_ = false;
    bool told_of_budget_ = false;
    QString last_path_;
    std::shared_ptr<const formats::spotlight_attributes> last_attributes_;
};

} // namespace metadata
