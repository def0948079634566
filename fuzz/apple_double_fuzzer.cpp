// A companion file, asked for each attribute that Spotlight would make of it.
#include "exercise_attributes.h"

#include "platform/portable/apple_double.h"
#include "platform/portable/attribute_value.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, size_t size)
{
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
    const auto file =
        platform::apple_double::read(std::make_unique<platform::memory_byte_source>(bytes));
    if (!file)
        return 0;
    for (const QString &name : exercised_attributes()) {
        const auto look_up = [&](const QByteArray &canonical) {
            const auto value = file->attribute(canonical);
            // Every value stands in the file as it is handed out.
            if (value && !bytes.contains(*value))
                std::abort();
            return value;
        };
        exercise(platform::spotlight_attribute(name, look_up));
    }
    return 0;
}
