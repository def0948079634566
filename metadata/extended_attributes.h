// Metadata that macOS keeps in extended attributes of the file itself, under the names by which
// drivers, shares and copying tools show them here.
#pragma once

#include "metadata/metadata_source.h"
#include "metadata/single_notes.h"

namespace metadata {

class extended_attributes final : public metadata_source
{
public:
    [[nodiscard]] std::unique_ptr<file_metadata> open(const source_file &file) override;
    // Under which prefix attributes were found, and the first name of each reason why a listed one
    // could not be read.
    [[nodiscard]] QStringList take_notes() override { return notes_.take(); }

private:
    class file;
    single_notes notes_;
};

} // namespace metadata
