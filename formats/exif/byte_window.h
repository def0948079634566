// A part of other bytes, seen as bytes of its own.
#pragma once

#include "evidence/files/byte_source.h"

namespace formats {

class byte_window final : public evidence::byte_source
{
public:
    // The part that lies outside of `whole`, which must outlive the window, is not there.
    byte_window(evidence::byte_source &whole, qint64 offset, qint64 length);
    [[nodiscard]] qint64 size() const override { return length_; }
    [[nodiscard]] QByteArray read(qint64 offset, qint64 length) override;

private:
    evidence::byte_source &whole_;
    qint64 offset_;
    qint64 length_;
};

} // namespace formats
