// Metadata from the AppleDouble companions of a file: "._name" beside it, and the one that an
// unpacked archive keeps in a folder "__MACOSX" of its own.
#pragma once

#include "metadata_source.h"
#include "single_notes.h"

#include <QByteArray>
#include <QString>

namespace platform {

class apple_double_companions final : public metadata_source
{
public:
    // `source_root`: no folder above it is looked into.
    explicit apple_double_companions(const QString &source_root);
    [[nodiscard]] std::unique_ptr<file_metadata> open(const source_file &file) override;
    // Which of the two places companions were found in.
    [[nodiscard]] QStringList take_notes() override { return notes_.take(); }

private:
    class file;
    QByteArray encoded_root_;
    single_notes notes_;
};

} // namespace platform
