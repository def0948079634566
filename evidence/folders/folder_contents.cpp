#include "evidence/folders/folder_contents.h"

#include "evidence/folders/folder_listing.h"

#include <fcntl.h>

#include <algorithm>
#include <cstring>

namespace evidence {

namespace {

constexpr size_t max_entries = 1'000'000;
constexpr int max_pool_bytes = 64 << 20;
constexpr char file_kind = 'f';
constexpr char other_kind = 'o';

} // namespace

std::shared_ptr<const folder_contents> folder_contents::list(const QByteArray &encoded_path,
                                                             const run::cancellation &cancelled)
{
    folder_listing folder;
    if (!folder.open(AT_FDCWD, encoded_path.constData()))
        return nullptr;
    auto contents = std::make_shared<folder_contents>();
    while (const dirent *entry = folder.next()) {
        contents->add(entry->d_name, entry->d_type == DT_REG ? file_kind : other_kind);
        const bool is_full =
            contents->entries_.size() > max_entries || contents->pool_.size() > max_pool_bytes;
        if (is_full || cancelled.is_requested())
            return nullptr;
    }
    if (folder.is_cut())
        return nullptr;
    contents->sort();
    return contents;
}

void folder_contents::add(const char *name, char kind)
{
    entries_.push_back(static_cast<quint32>(pool_.size()));
    pool_.append(kind).append(name).append('\0');
}

void folder_contents::sort()
{
    const char *const pool = pool_.constData();
    std::sort(entries_.begin(), entries_.end(), [pool](quint32 left, quint32 right) {
        return std::strcmp(pool + left + 1, pool + right + 1) < 0;
    });
}

const char *folder_contents::find(const QByteArray &name) const
{
    const char *const pool = pool_.constData();
    const auto found = std::lower_bound(entries_.begin(), entries_.end(), name.constData(),
                                        [pool](quint32 entry, const char *wanted) {
                                            return std::strcmp(pool + entry + 1, wanted) < 0;
                                        });
    if (found == entries_.end() || std::strcmp(pool + *found + 1, name.constData()) != 0)
        return nullptr;
    return pool + *found;
}

bool folder_contents::is_file(const QByteArray &name) const
{
    const char *const found = find(name);
    return found != nullptr && *found == file_kind;
}

} // namespace evidence
