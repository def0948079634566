// What an errno value means for a file of the source.
#pragma once

#include <QString>

#include <cerrno>
#include <system_error>

namespace evidence {

// Whether the reason hides something that may be there. Nothing is hidden where a name is missing,
// or belongs to a file or a link where a folder should be.
inline bool is_refusal(int error)
{
    return error != 0 && error != ENOENT && error != ENOTDIR && error != ELOOP;
}

inline QString system_error_text(int error)
{
    return QString::fromStdString(std::generic_category().message(error));
}

} // namespace evidence
