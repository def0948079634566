// Hands out the bytes of another source until so many were read that no honest file needs more.
#pragma once

#include "evidence/files/byte_source.h"

namespace formats {

class metered_byte_source final : public evidence::byte_source
{
public:
    // `metered` must outlive this object.
    metered_byte_source(evidence::byte_source &metered, qint64 limit_bytes)
        : metered_(metered)
        , left_(limit_bytes)
    {
    }

    [[nodiscard]] qint64 size() const override { return metered_.size(); }
    // Nothing for a request that goes past the limit.
    [[nodiscard]] QByteArray read(qint64 offset, qint64 length) override
    {
        if (length > left_)
            return {};
        QByteArray bytes = metered_.read(offset, length);
        left_ -= bytes.size();
        return bytes;
    }

private:
    evidence::byte_source &metered_;
    qint64 left_;
};

} // namespace formats
