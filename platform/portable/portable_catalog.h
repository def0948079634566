// The catalog over sources of metadata, which this platform reads itself.
#pragma once

#include "metadata/metadata_source.h"
#include "platform/spotlight_item.h"

#include <memory>
#include <vector>

namespace platform {

// `sources`: the most trusted first. What one of them throws costs the file's answer and a note.
[[nodiscard]] std::unique_ptr<spotlight_catalog>
make_portable_catalog(const QString &source_root,
                      std::vector<std::unique_ptr<metadata::metadata_source>> sources);

} // namespace platform
