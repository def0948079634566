// Tells what kind of image or archive a file is, by its first bytes.
#pragma once

#include <QString>

namespace inventory {

struct image_kind
{
    QString name;     // for people; null when it is none that is known
    QString commands; // that make its content reachable here, read-only; a line each
};

// `path`: as given. Reads a few kilobytes of it.
[[nodiscard]] image_kind kind_of_image(const QString &path);

} // namespace inventory
