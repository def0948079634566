// Reads a companion file and each attribute that Spotlight would make of it.
#include "exercise_attributes.h"

#include "formats/apple_double/apple_double.h"
#include "formats/attributes/attribute_value.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, size_t size)
{
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
    const auto file =
        formats::apple_double::read(std::make_unique<evidence::memory_byte_source>(bytes));
    if (!file)
        return 0;
    for (const QString &name : exercised_attributes()) {
        const auto look_up = [&](const QByteArray &canonical) {
            const auto value = file->attribute(canonical);
            // Every value has to be a part of the file.
            if (value && !bytes.contains(*value))
                std::abort();
            return value;
        };
        exercise(formats::spotlight_attribute(name, look_up));
    }
    return 0;
}
