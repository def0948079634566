// Pieces of other bytes, one behind the other, seen as bytes of their own.
#pragma once

#include "evidence/files/byte_source.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace formats {

struct extent
{
    qint64 offset;
    qint64 length;
};

class extent_source final : public evidence::byte_source
{
public:
    // The pieces lie inside of `whole`, which must outlive this object.
    extent_source(evidence::byte_source &whole, std::vector<extent> pieces)
        : whole_(whole)
        , pieces_(std::move(pieces))
    {
        for (const extent &piece : pieces_)
            size_ += piece.length;
    }

    // Leaves out the bytes before `offset`, which is not above the size.
    void start_at(qint64 offset) { start_ = offset; }

    [[nodiscard]] qint64 size() const override { return size_ - start_; }
    [[nodiscard]] QByteArray read(qint64 offset, qint64 length) override
    {
        QByteArray bytes;
        if (offset < 0 || length <= 0)
            return bytes;
        offset += start_;
        for (const extent &piece : pieces_) {
            const qint64 wanted = std::min(length - bytes.size(), piece.length - offset);
            if (wanted > 0)
                bytes += whole_.read(piece.offset + offset, wanted);
            offset = std::max<qint64>(0, offset - piece.length);
        }
        return bytes;
    }

private:
    evidence::byte_source &whole_;
    std::vector<extent> pieces_;
    qint64 size_ = 0;
    qint64 start_ = 0;
};

} // namespace formats
