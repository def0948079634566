// What the targets that take texts share.
#pragma once

#include <QString>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace fuzzed {

// An odd `encoding` takes the bytes as UTF-16 units, unpaired surrogates included.
inline QString text(std::uint8_t encoding, const std::uint8_t *data, size_t size)
{
    if (encoding % 2 == 0)
        return QString::fromUtf8(reinterpret_cast<const char *>(data), int(size));
    std::vector<ushort> units(size / sizeof(ushort));
    if (!units.empty())
        std::memcpy(units.data(), data, units.size() * sizeof(ushort));
    return QString::fromUtf16(units.data(), int(units.size()));
}

inline void require(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace fuzzed
