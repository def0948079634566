// What the file system itself says of a file, under the names by which Spotlight publishes it.
#pragma once

#include "metadata/metadata_source.h"
#include "metadata/single_notes.h"
#include "run/cancellation.h"

namespace metadata {

class file_system_facts final : public metadata_source
{
public:
    explicit file_system_facts(run::cancellation cancelled = {})
        : cancelled_(cancelled)
    {
    }

    [[nodiscard]] std::unique_ptr<file_metadata> open(const source_file &file) override;
    [[nodiscard]] QStringList take_notes() override { return notes_.take(); }

private:
    class file;
    single_notes notes_;
    run::cancellation cancelled_;
};

} // namespace metadata
