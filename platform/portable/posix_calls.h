// The system calls that differ between Linux and macOS in name, arguments or result. None follows a
// link in the last component of its path, changes a file, or throws.
#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <optional>

namespace platform {

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
[[nodiscard]] system_bytes list_extended_attributes(const QByteArray &encoded_path);
// The value of one of them, under the same terms.
[[nodiscard]] system_bytes read_extended_attribute(const QByteArray &encoded_path,
                                                   const QByteArray &name);

// Number of entries of a folder, "." and ".." not counted; nullopt when it cannot be read, or holds
// more than ten million.
[[nodiscard]] std::optional<qint64> folder_entry_count(const QByteArray &encoded_path);

} // namespace platform
