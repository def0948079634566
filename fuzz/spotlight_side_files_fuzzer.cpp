// Reads a store with its side files. The input holds them one after the other: a byte for the
// file's name, its size in two bytes, least significant first, and its bytes.
#include "exercise_spotlight_store.h"

#include <cstddef>
#include <cstdint>

namespace {

QString file_name(int number)
{
    if (number == 0)
        return QStringLiteral("store.db");
    const char *const parts[] = {"header", "offsets", "data"};
    return QStringLiteral("dbStr-%1.map.").arg((number - 1) / 3 + 1) +
           QLatin1String(parts[(number - 1) % 3]);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, size_t size)
{
    constexpr size_t head_bytes = 3;
    constexpr int files_in_all = 16;
    QHash<QString, QByteArray> files;
    while (size >= head_bytes) {
        const size_t length = std::min(size_t(data[1]) | size_t(data[2]) << 8, size - head_bytes);
        files[file_name(data[0] % files_in_all)] =
            QByteArray(reinterpret_cast<const char *>(data + head_bytes), int(length));
        data += head_bytes + length;
        size -= head_bytes + length;
    }
    exercise_spotlight_store(files);
    return 0;
}
