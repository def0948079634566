#include "watched_opens.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

// What the C library and SQLite read on their own.
constexpr std::string_view system_files[] = {"/dev/urandom", "/etc/localtime",
                                             "/usr/share/zoneinfo/", "/proc/self/"};

bool is_watching = false;
std::string source_folder;
std::string result_folder;

bool starts_with(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

bool is_in(std::string_view path, const std::string &folder)
{
    return starts_with(path, folder) &&
           (path.size() == folder.size() || path[folder.size()] == '/');
}

bool is_system_file(std::string_view named)
{
    for (const std::string_view file : system_files) {
        if (starts_with(named, file))
            return true;
    }
    return false;
}

void check(int descriptor, const char *named, int flags)
{
    if (is_system_file(named))
        return;
    char place[PATH_MAX] = {};
    const std::string self = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t length = ::readlink(self.c_str(), place, sizeof place - 1);
    const std::string_view real(place, length < 0 ? 0 : size_t(length));
    const bool only_reads = (flags & O_ACCMODE) == O_RDONLY && (flags & (O_CREAT | O_TRUNC)) == 0;
    if (is_in(real, result_folder) || (only_reads && is_in(real, source_folder)))
        return;
    std::fprintf(stderr, "opened with flags %x: %s, which is %s\n", unsigned(flags), named, place);
    std::abort();
}

int open_watched(int folder, const char *path, int flags, mode_t mode)
{
    const int descriptor = int(::syscall(SYS_openat, folder, path, flags, mode));
    if (is_watching && descriptor >= 0)
        check(descriptor, path, flags);
    return descriptor;
}

// The argument that is there only for flags that make a file.
mode_t mode_from(int flags, va_list *rest)
{
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(*rest, mode_t) : 0;
}

} // namespace

// The program's own definitions come before those of the C library, for all libraries.
#define WATCHED_OPEN(NAME)                                                                         \
    extern "C" __attribute__((visibility("default"))) int NAME(const char *path, int flags, ...)   \
    {                                                                                              \
        va_list rest;                                                                              \
        va_start(rest, flags);                                                                     \
        const mode_t mode = mode_from(flags, &rest);                                               \
        va_end(rest);                                                                              \
        return open_watched(AT_FDCWD, path, flags, mode);                                          \
    }
#define WATCHED_OPENAT(NAME)                                                                       \
    extern "C" __attribute__((visibility("default"))) int NAME(int folder, const char *path,       \
                                                               int flags, ...)                     \
    {                                                                                              \
        va_list rest;                                                                              \
        va_start(rest, flags);                                                                     \
        const mode_t mode = mode_from(flags, &rest);                                               \
        va_end(rest);                                                                              \
        return open_watched(folder, path, flags, mode);                                            \
    }

WATCHED_OPEN(open)
WATCHED_OPEN(open64)
WATCHED_OPENAT(openat)
WATCHED_OPENAT(openat64)

namespace watched_opens {

void begin(const std::string &source, const std::string &result)
{
    source_folder = source;
    result_folder = result;
    is_watching = true;
}

void end()
{
    is_watching = false;
}

} // namespace watched_opens
