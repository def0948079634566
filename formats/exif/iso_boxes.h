// The boxes that HEIF and AVIF files are made of: a length, a type of four letters, and content,
// which may be boxes again.
#pragma once

#include "evidence/files/byte_source.h"

#include <QtEndian>

#include <optional>

namespace formats {

struct iso_box
{
    QByteArray type;
    qint64 offset = 0; // of its content
    qint64 length = 0; // of its content, as far as it is there
    bool is_whole = false;
};

// Goes through boxes that follow each other; does not enter them.
class iso_box_walk
{
public:
    // `boxes` must outlive the walk.
    explicit iso_box_walk(evidence::byte_source &boxes, qint64 offset = 0)
        : boxes_(boxes)
        , offset_(offset)
    {
    }

    // Nullopt at the end, at a box that cannot be, and after 65,536 boxes.
    [[nodiscard]] std::optional<iso_box> next();

private:
    evidence::byte_source &boxes_;
    qint64 offset_;
    int count_ = 0;
};

// Takes big-endian numbers off the front of some bytes. Past their end every number is 0.
class iso_fields
{
public:
    explicit iso_fields(QByteArray bytes)
        : bytes_(std::move(bytes))
    {
    }

    // `bytes`: 0 to 8.
    quint64 take(int bytes);
    void skip(qint64 bytes);
    // The version of a box that has one; takes its flags too.
    int take_version();
    [[nodiscard]] bool is_past_end() const { return offset_ > bytes_.size(); }

private:
    QByteArray bytes_;
    qint64 offset_ = 0;
};

} // namespace formats
