// Where metadata of files can come from on this platform. Each source is asked about one file at a
// time and answers by the names under which Spotlight publishes attributes; the catalog asks them
// in order of trust and takes the first answer. Not thread-safe.
#pragma once

#include "evidence/access/held_file.h"
#include "evidence/folders/folder_contents.h"
#include "formats/attributes/spotlight_value.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace metadata {

// A file or folder of the examined source that does exist.
struct source_file
{
    QString path;            // absolute, reachable here, free of links
    QByteArray encoded_path; // the same as the system calls take it
    std::shared_ptr<const evidence::held_file> held;
    std::shared_ptr<const evidence::folder_contents>
        folder; // that it lies in; null when not listed
};

// What one source knows of one file. Looks at the disk when first asked, not before.
class file_metadata
{
public:
    virtual ~file_metadata() = default;
    // The value of the attribute of that public name ("kMDItemWhereFroms"); nullopt when this
    // source does not know it, or holds it in a form that cannot be trusted.
    [[nodiscard]] virtual std::optional<formats::spotlight_value>
    attribute(const QString &name) = 0;
};

class metadata_source
{
public:
    virtual ~metadata_source() = default;
    // Null when this source knows nothing of the file. The result copies what it needs of `file`,
    // and must not outlive this source.
    [[nodiscard]] virtual std::unique_ptr<file_metadata> open(const source_file &file) = 0;
    // Lines for the debug log since the last call. No line comes twice.
    [[nodiscard]] virtual QStringList take_notes() = 0;
};

} // namespace metadata
