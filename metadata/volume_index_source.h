// The index of the examined volume as a source of metadata.
#pragma once

#include "metadata/metadata_source.h"
#include "metadata/spotlight_volume_index.h"
#include "run/cancellation.h"

#include <functional>

#include <memory>

namespace metadata {

class volume_index_source final : public metadata_source
{
public:
    // `cancelled`: see spotlight_volume_index.
    volume_index_source(const QString &source_root, const run::cancellation &cancelled);

    // Never null: whether an index knows the file is found out when it is asked.
    [[nodiscard]] std::unique_ptr<file_metadata> open(const source_file &file) override;
    [[nodiscard]] QStringList take_notes() override;

private:
    spotlight_volume_index index_;
};

} // namespace metadata
