#include "evidence/access/attribute_calls.h"

#include <sys/xattr.h>

namespace evidence {

ssize_t list_attribute_names(int file, char *buffer, size_t size)
{
    return ::flistxattr(file, buffer, size, 0);
}

ssize_t get_attribute(int file, const char *name, char *buffer, size_t size)
{
    return ::fgetxattr(file, name, buffer, size, 0, 0);
}

} // namespace evidence
