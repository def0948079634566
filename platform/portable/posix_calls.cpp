#include "posix_calls.h"

#include "support/evidence_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace platform {

namespace {

constexpr int most_attempts = 4; // one, and three more when the size changed meanwhile
constexpr qint64 most_folder_entries = 10'000'000;

#ifdef __APPLE__
ssize_t system_list(const char *path, char *buffer, size_t size)
{
    return ::listxattr(path, buffer, size, XATTR_NOFOLLOW);
}

ssize_t system_get(const char *path, const char *name, char *buffer, size_t size)
{
    return ::getxattr(path, name, buffer, size, 0, XATTR_NOFOLLOW);
}
#else
ssize_t system_list(const char *path, char *buffer, size_t size)
{
    return ::llistxattr(path, buffer, size);
}

ssize_t system_get(const char *path, const char *name, char *buffer, size_t size)
{
    return ::lgetxattr(path, name, buffer, size);
}
#endif

// `call(buffer, size)` tells the size when size is 0, and fills the buffer otherwise.
template <typename Call> system_bytes read_sized(const Call &call, ssize_t limit_bytes)
{
    for (int attempt = 0; attempt < most_attempts; ++attempt) {
        const ssize_t size = call(nullptr, 0);
        if (size < 0)
            return {{}, errno};
        if (size > limit_bytes)
            return {{}, E2BIG};
        // One byte more than needed: some drivers cut a value that has grown to the buffer instead
        // of refusing, and only a full buffer tells.
        QByteArray bytes(static_cast<int>(size) + 1, '\0');
        const ssize_t got = call(bytes.data(), static_cast<size_t>(bytes.size()));
        if (got < 0 && errno != ERANGE)
            return {{}, errno};
        if (got >= 0 && got < bytes.size()) {
            bytes.truncate(static_cast<int>(got));
            return {bytes, 0};
        }
    }
    return {{}, ERANGE};
}

bool is_own_or_parent(const char *name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

} // namespace

system_bytes list_extended_attributes(const QByteArray &encoded_path)
{
    const auto call = [&](char *buffer, size_t size) {
        return system_list(encoded_path.constData(), buffer, size);
    };
    return read_sized(call, max_attribute_list_bytes);
}

system_bytes read_extended_attribute(const QByteArray &encoded_path, const QByteArray &name)
{
    const auto call = [&](char *buffer, size_t size) {
        return system_get(encoded_path.constData(), name.constData(), buffer, size);
    };
    return read_sized(call, max_attribute_value_bytes);
}

std::optional<qint64> folder_entry_count(const QByteArray &encoded_path)
{
    const int descriptor = support::open_unchanged(AT_FDCWD, encoded_path.constData(),
                                                   O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0)
        return std::nullopt;
    DIR *folder = ::fdopendir(descriptor);
    if (folder == nullptr) {
        ::close(descriptor);
        return std::nullopt;
    }
    qint64 count = 0;
    errno = 0;
    while (const struct dirent *entry = ::readdir(folder)) {
        count += is_own_or_parent(entry->d_name) ? 0 : 1;
        if (count > most_folder_entries)
            break;
        errno = 0;
    }
    const bool complete = errno == 0 && count <= most_folder_entries;
    ::closedir(folder);
    return complete ? std::optional<qint64>(count) : std::nullopt;
}

} // namespace platform
