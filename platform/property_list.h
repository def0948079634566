// Reading property lists, XML or binary, as Foundation would. One implementation per platform:
// portable/ parses the bytes itself, apple/ asks Foundation.
//
// A property_list owns what it read; its values are valid until the list is loaded anew or
// destroyed. Nothing here throws, logs or writes. Not thread-safe.
#pragma once

#include "formats/property_list/base/property_list_value.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace evidence {
class folder_walk;
}

namespace platform {

// A list read from a file or from memory. Reuse one object for many files: it keeps its buffers.
class property_list
{
public:
    property_list();
    ~property_list();
    property_list(const property_list &) = delete;
    property_list &operator=(const property_list &) = delete;

    // Reads the file at `path`, without following a link in its last component. Returns whether it
    // holds a dictionary at its top, i.e. false where dictionaryWithContentsOfFile: gives nil: no
    // such file, no regular file, larger than the limit, unreadable, not a list, another top value.
    // The former content is gone either way.
    bool load(const QString &path);
    // The same for the current entry of a walk, which must be no link.
    bool load(const evidence::folder_walk &entry);
    // The same for bytes at hand; the top value may be of any kind. False when they are no list.
    bool load_bytes(const QByteArray &bytes);

    // The top value; absent when nothing is loaded.
    [[nodiscard]] formats::property_list_value root() const;

private:
    class implementation;
    std::unique_ptr<implementation> implementation_;
};

} // namespace platform
