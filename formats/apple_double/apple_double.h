// One AppleDouble file: what macOS puts beside a file on a volume, or into an archive, that cannot
// hold its extended attributes. Files that macOS itself would refuse give nothing.
#pragma once

#include "evidence/files/byte_source.h"

#include <QByteArray>

#include <memory>
#include <optional>
#include <vector>

namespace formats {

class apple_double
{
public:
    // Null unless the bytes are an AppleDouble file, of either version, whose entries lie inside of
    // it and apart from each other. The attributes before a damaged one are kept.
    [[nodiscard]] static std::unique_ptr<apple_double>
    read(std::unique_ptr<evidence::byte_source> file);

    // The value of the attribute of that name, copying flags not counted; for
    // "com.apple.FinderInfo" the 32 bytes of the Finder. nullopt when there is none, it is larger
    // than a mebibyte, or it cannot be read completely.
    [[nodiscard]] std::optional<QByteArray> attribute(const QByteArray &canonical_name) const;
    // Whether there is neither an attribute nor Finder information other than zeros.
    [[nodiscard]] bool is_empty() const { return attributes_.empty() && finder_info_.isEmpty(); }

private:
    struct entry
    {
        quint32 type = 0;
        quint64 offset = 0;
        quint64 length = 0;
        [[nodiscard]] quint64 end() const { return offset + length; }
    };
    struct attribute_place
    {
        QByteArray canonical_name;
        quint64 offset = 0;
        quint64 length = 0;
    };

    explicit apple_double(std::unique_ptr<evidence::byte_source> file);
    bool read_entries(const QByteArray &head);
    [[nodiscard]] bool has_sound_entries(quint64 table_end) const;
    void read_finder_entry(const QByteArray &head, const entry &finder);
    // False when the attribute block is one that macOS would not touch.
    bool read_attributes(const QByteArray &head, const entry &finder);
    // Returns where the next entry starts; 0 for a damaged one.
    [[nodiscard]] static quint64 read_attribute_entry(const QByteArray &entries, quint64 at,
                                                      attribute_place *place);

    std::unique_ptr<evidence::byte_source> file_;
    std::vector<entry> entries_;
    std::vector<attribute_place> attributes_;
    QByteArray finder_info_; // 32 bytes, or none
};

} // namespace formats
