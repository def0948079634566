// Reads one file of an index, with the tables that it holds.
#include "exercise_spotlight_store.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, size_t size)
{
    const QByteArray store =
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
    exercise_spotlight_store({{QStringLiteral("store.db"), store}});
    return 0;
}
