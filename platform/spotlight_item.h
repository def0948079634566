// Spotlight metadata of single files. On macOS the system answers; elsewhere the portable sources
// do: index of the examined volume, extended attributes, AppleDouble companions, file system.
#pragma once

#include "evidence/folders/source_boundary.h"
#include "run/cancellation.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace platform {

// What is known of one attribute's value.
struct attribute_description
{
    QString text;     // the description that Core Foundation prints for the value
    QString c_string; // the same where the system hands it out as a C string directly, else null
};

// One file. Attributes are looked up when asked for.
class spotlight_item
{
public:
    virtual ~spotlight_item() = default;
    // The attribute of that public name ("kMDItemFSName"); nullopt when the file has none.
    [[nodiscard]] virtual std::optional<attribute_description>
    attribute(const QString &name) const = 0;
};

// Makes items for the files of one examined source. Keeps what many files share, as an index.
class spotlight_catalog
{
public:
    virtual ~spotlight_catalog() = default;
    // `place`: inside the source, with its file held. Null when nothing is known of it. The item
    // must not outlive the catalog. It may be the one that was handed out for the same path just
    // before.
    [[nodiscard]] virtual std::shared_ptr<spotlight_item>
    item(const evidence::resolved_path &place) = 0;
    // Lines worth a place in the debug log that have come up since the last call: which sources of
    // metadata were found, why one could not be used.
    [[nodiscard]] virtual QStringList take_notes() = 0;
};

// `source_root`: folder at which the source's file system is reachable; nothing outside is read.
// `cancelled`: asked during work that may take long, true ends it without an answer; may be null.
[[nodiscard]] std::unique_ptr<spotlight_catalog>
make_spotlight_catalog(const QString &source_root, const run::cancellation &cancelled = {});

} // namespace platform
