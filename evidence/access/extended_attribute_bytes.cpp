#include "evidence/access/extended_attribute_bytes.h"

#include "evidence/access/attribute_calls.h"

#include <cerrno>

namespace evidence {

namespace {

constexpr int max_attempts = 4; // one, and three more when the size changed meanwhile

// `call(buffer, size)` tells the size when size is 0, and fills the buffer otherwise. Most values
// fit the first buffer. A buffer that got full counts as too small: some drivers cut a value to the
// buffer instead of refusing.
template <typename Call> system_bytes read_sized(const Call &call, ssize_t limit_bytes)
{
    char first[4096];
    ssize_t got = call(first, sizeof first);
    if (got < 0 && errno != ERANGE)
        return {{}, errno};
    if (got >= 0 && got < ssize_t(sizeof first))
        return {QByteArray(first, static_cast<int>(got)), 0};
    for (int attempt = 0; attempt < max_attempts; ++attempt) {
        const ssize_t size = call(nullptr, 0);
        if (size < 0)
            return {{}, errno};
        if (size > limit_bytes)
            return {{}, E2BIG};
        QByteArray bytes(static_cast<int>(size) + 1, '\0');
        got = call(bytes.data(), static_cast<size_t>(bytes.size()));
        if (got < 0 && errno != ERANGE)
            return {{}, errno};
        if (got >= 0 && got < bytes.size()) {
            bytes.truncate(static_cast<int>(got));
            return {bytes, 0};
        }
    }
    return {{}, ERANGE};
}

} // namespace

system_bytes list_extended_attributes(const held_file &file)
{
    const auto call = [&](char *buffer, size_t size) {
        return list_attribute_names(file.for_attributes(), buffer, size);
    };
    return read_sized(call, max_attribute_list_bytes);
}

system_bytes read_extended_attribute(const held_file &file, const QByteArray &name)
{
    const auto call = [&](char *buffer, size_t size) {
        return get_attribute(file.for_attributes(), name.constData(), buffer, size);
    };
    return read_sized(call, max_attribute_value_bytes);
}

} // namespace evidence
