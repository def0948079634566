// The bytes of one extended attribute, read as each kind that there is, and its name.
#include "exercise_attributes.h"

#include "platform/portable/attribute_name.h"
#include "platform/portable/attribute_value.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, size_t size)
{
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
    (void)platform::canonical_attribute_name(bytes);
    for (const QString &name : exercised_attributes()) {
        exercise(platform::spotlight_attribute(
            name, [&](const QByteArray &) { return std::optional<QByteArray>(bytes); }));
    }
    return 0;
}
