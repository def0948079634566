// Extended attributes, with bounds. Nothing is changed, nothing throws.
#pragma once

#include "evidence/access/held_file.h"

#include <QByteArray>
#include <QtGlobal>

namespace evidence {

// Bytes that the system handed out, or the reason (an errno value) why it did not.
struct system_bytes
{
    QByteArray bytes;
    int error = 0;
};

// Largest list of attribute names, and largest attribute value, that is read. Linux itself allows
// 64 KiB for each; other systems allow more for values.
constexpr int max_attribute_list_bytes = 64 * 1024;
constexpr int max_attribute_value_bytes = 1024 * 1024;

// Names of the extended attributes of a file or folder, each ended by a NUL. Larger lists than the
// limit give E2BIG, a list that changes all the time ERANGE.
[[nodiscard]] system_bytes list_extended_attributes(const held_file &file);
// The value of one of them, under the same terms.
[[nodiscard]] system_bytes read_extended_attribute(const held_file &file, const QByteArray &name);

} // namespace evidence
