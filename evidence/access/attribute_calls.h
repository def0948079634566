// The two system calls for extended attributes, which differ between systems in their arguments.
// Results and errors are those of the calls.
#pragma once

#include <sys/types.h>

#include <cstddef>

namespace evidence {

// `file` is open for reading, or held where the system can hold.
ssize_t list_attribute_names(int file, char *buffer, size_t size);
ssize_t get_attribute(int file, const char *name, char *buffer, size_t size);

} // namespace evidence
