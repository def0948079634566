#include "evidence/access/source_open.h"

#include <QByteArray>
#include <QList>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>

#ifdef SYS_openat2
#include <linux/openat2.h>
#endif

namespace evidence {

namespace {

#ifdef O_PATH
constexpr int hold_flags = O_PATH | O_NOFOLLOW | O_CLOEXEC;
#else
constexpr int hold_flags = O_RDONLY | O_NOFOLLOW | O_CLOEXEC;
#endif

#ifdef SYS_openat2
// Kernels before 5.6 and some sandboxes have no such call.
std::atomic<bool> refuses_links{true};

int open_refusing_links(int parent, const char *path, int flags)
{
    struct open_how how = {};
    how.flags = static_cast<quint64>(flags);
    how.resolve = RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    return static_cast<int>(::syscall(SYS_openat2, parent, path, &how, sizeof how));
}
#endif

descriptor open_without_links(int parent, const char *path, int flags)
{
#ifdef SYS_openat2
    if (refuses_links) {
        const int opened = open_refusing_links(parent, path, flags);
        if (opened >= 0 || (errno != ENOSYS && errno != EPERM))
            return descriptor(opened);
        if (errno == ENOSYS)
            refuses_links = false;
    }
#elif defined(O_NOFOLLOW_ANY)
    return descriptor(::openat(parent, path, (flags & ~O_NOFOLLOW) | O_NOFOLLOW_ANY));
#endif
    return open_step_by_step(parent, path, flags);
}

// `open_with(flags)`, first so that the access time stays.
template <typename Open> descriptor keeping_access_time(int flags, const Open &open_with)
{
#ifdef O_NOATIME
    descriptor opened = open_with(flags | O_NOATIME);
    // Only the owner may ask for it; everybody else gets EPERM.
    if (opened.is_open() || errno != EPERM)
        return opened;
#endif
    return open_with(flags);
}

} // namespace

descriptor open_step_by_step(int parent, const char *path, int flags)
{
    QList<QByteArray> names = QByteArray(path).split('/');
    names.removeAll(QByteArray());
    const QByteArray last = names.isEmpty() ? QByteArray(".") : names.takeLast();
    descriptor folder;
    if (*path == '/') {
        folder = descriptor(::open("/", hold_flags | O_DIRECTORY));
        parent = folder.get();
    }
    for (const QByteArray &name : qAsConst(names)) {
        folder = descriptor(::openat(parent, name.constData(), hold_flags | O_DIRECTORY));
        if (!folder.is_open())
            return {};
        parent = folder.get();
    }
    return descriptor(::openat(parent, last.constData(), flags | O_NOFOLLOW));
}

descriptor open_unchanged(int parent, const char *path, int flags)
{
    return keeping_access_time(O_RDONLY | O_CLOEXEC | flags, [parent, path](int with) {
        return open_without_links(parent, path, with);
    });
}

descriptor hold(int parent, const char *path)
{
#ifdef O_PATH
    static const bool can_be_read_later = ::access("/proc/self/fd", X_OK) == 0;
    if (can_be_read_later)
        return open_without_links(parent, path, hold_flags);
#else
    static_cast<void>(parent);
    static_cast<void>(path);
#endif
    errno = ENOSYS;
    return {};
}

descriptor hold_folder(int parent, const char *path)
{
    return open_without_links(parent, path, hold_flags | O_DIRECTORY);
}

descriptor read_held(const descriptor &held, int flags)
{
    char path[sizeof "/proc/self/fd/" + 3 * sizeof(int)];
    std::snprintf(path, sizeof path, "/proc/self/fd/%d", held.get());
    return keeping_access_time(O_RDONLY | O_CLOEXEC | flags,
                               [&path](int with) { return descriptor(::open(path, with)); });
}

QByteArray read_link(int parent, const char *name)
{
    char target[PATH_MAX];
    const ssize_t length = ::readlinkat(parent, name, target, sizeof target);
    return length < 0 ? QByteArray() : QByteArray(target, static_cast<int>(length));
}

} // namespace evidence
