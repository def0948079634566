// Reads the name and the bytes of one extended attribute as each kind of value.
#include "exercise_attributes.h"

#include "formats/attributes/attribute_name.h"
#include "formats/attributes/attribute_value.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, size_t size)
{
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
    (void)formats::canonical_attribute_name(bytes);
    for (const QString &name : exercised_attributes()) {
        exercise(formats::spotlight_attribute(
            name, [&](const QByteArray &) { return std::optional<QByteArray>(bytes); }));
    }
    return 0;
}
