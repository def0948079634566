#include "evidence/folders/folder_listing.h"

#include "evidence/access/source_open.h"

#include <QLatin1String>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace evidence {

bool folder_listing::open(int parent, const char *name)
{
    return take(open_unchanged(parent, name, O_DIRECTORY));
}

bool folder_listing::open(const held_file &held)
{
    return take(held.for_listing());
}

bool folder_listing::take(evidence::descriptor opened)
{
    const int reason = errno;
    close();
    errno = reason;
    is_cut_ = false;
    stream_.reset(opened.is_open() ? ::fdopendir(opened.get()) : nullptr);
    if (stream_)
        static_cast<void>(opened.release());
    return is_open();
}

const dirent *folder_listing::next()
{
    errno = 0;
    while (const dirent *entry = ::readdir(stream_.get())) {
        const QLatin1String name(entry->d_name);
        if (name != QLatin1String(".") && name != QLatin1String(".."))
            return entry;
    }
    is_cut_ = errno != 0;
    return nullptr;
}

folder_identity folder_listing::identity() const
{
    struct stat status = {};
    if (::fstat(descriptor(), &status) != 0)
        return {};
    return {status.st_dev, status.st_ino};
}

std::optional<qint64> folder_entry_count(const held_file &held, const run::cancellation &cancelled)
{
    constexpr qint64 max_entries = 10'000'000;
    folder_listing folder;
    if (!folder.open(held))
        return std::nullopt;
    qint64 count = 0;
    while (count <= max_entries && folder.next() != nullptr) {
        ++count;
        if (cancelled.is_requested())
            return std::nullopt;
    }
    if (folder.is_cut() || count > max_entries)
        return std::nullopt;
    return count;
}

} // namespace evidence
