#include "evidence/access/attribute_calls.h"

#include <sys/xattr.h>

#include <cerrno>
#include <cstdio>

namespace evidence {

namespace {

// What is only held gives its attributes by its name in /proc, which leads to the file itself.
class held_name
{
public:
    explicit held_name(int file) { std::snprintf(path_, sizeof path_, "/proc/self/fd/%d", file); }
    [[nodiscard]] const char *path() const { return path_; }

private:
    char path_[sizeof "/proc/self/fd/" + 3 * sizeof(int)];
};

} // namespace

ssize_t list_attribute_names(int file, char *buffer, size_t size)
{
    const ssize_t got = ::flistxattr(file, buffer, size);
    return got < 0 && errno == EBADF ? ::listxattr(held_name(file).path(), buffer, size) : got;
}

ssize_t get_attribute(int file, const char *name, char *buffer, size_t size)
{
    const ssize_t got = ::fgetxattr(file, name, buffer, size);
    return got < 0 && errno == EBADF ? ::getxattr(held_name(file).path(), name, buffer, size) : got;
}

} // namespace evidence
