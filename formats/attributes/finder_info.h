// The 32 bytes in which the Finder keeps what it knows of a file or folder.
#pragma once

#include "formats/attributes/spotlight_value.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace formats {

class finder_info
{
public:
    // Other sizes than 32 bytes (33 with the NUL that a file server appends), and 32 zero bytes,
    // hold nothing.
    explicit finder_info(const QByteArray &bytes);

    // Whether an attribute of that name can be found here at all.
    [[nodiscard]] static bool knows(const QString &name);
    // kMDItemDateAdded (HFS+ keeps it here; nullopt where that field was blanked),
    // kMDItemFSInvisible and kMDItemFSIsExtensionHidden as booleans, kMDItemFSLabel as 0 to 7.
    [[nodiscard]] std::optional<spotlight_value> attribute(const QString &name) const;

private:
    QByteArray bytes_; // 32, or none
};

} // namespace formats
