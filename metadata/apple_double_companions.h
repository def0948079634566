// Metadata from the AppleDouble companions of a file: "._name" beside it, and the one that an
// unpacked archive keeps in a folder "__MACOSX" of its own.
#pragma once

#include "formats/apple_double/apple_double.h"
#include "metadata/metadata_source.h"
#include "metadata/single_notes.h"

#include <QByteArray>
#include <QCache>
#include <QString>

#include <map>
#include <utility>

namespace metadata {

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

    // The companion of the file at `way` below `folder`: names, those of folders first, "/" between
    // them. `listed`: what is in its folder; null when that is not known.
    [[nodiscard]] std::unique_ptr<formats::apple_double>
    companion_below(const QByteArray &folder, const QByteArray &way,
                    const evidence::folder_contents *listed);
    [[nodiscard]] std::unique_ptr<formats::apple_double>
    companion_at(const QByteArray &folder, const QByteArray &way,
                 const evidence::folder_contents *listed);
    [[nodiscard]] bool may_use(const evidence::file_status &companion);
    // Remembers the answer: files of one volume share the folders above them.
    bool is_folder(const QByteArray &path);

    QByteArray encoded_root_;
    QCache<QByteArray, bool> archive_folders_;    // whether they are there
    std::map<std::pair<dev_t, ino_t>, int> uses_; // of companions with several names
    single_notes notes_;
};

} // namespace metadata
