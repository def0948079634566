// Asks everything of a loaded property list, as often as a bound allows.
#pragma once

#include "platform/property_list.h"

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace fuzz {

// Lists may hold themselves: stops after a fixed number of values.
inline void walk_property_list(const platform::property_list_value &root)
{
    using platform::value_kind;
    constexpr int most_values = 500;
    constexpr int most_elements = 100;
    const QString keys[] = {QStringLiteral("Path"), QStringLiteral("a"), QStringLiteral("\u00e9"),
                            QString()};
    std::vector<platform::property_list_value> waiting = {root};
    for (int done = 0; done < most_values && !waiting.empty(); ++done) {
        const platform::property_list_value value = waiting.back();
        waiting.pop_back();
        if (value.is(value_kind::text) == value.text().isNull() ||
            value.class_name().isNull() != value.is(value_kind::absent) ||
            (value.is_floating() && !value.is_number()))
            __builtin_trap();
        static_cast<void>(value.double_value());
        static_cast<void>(value.seconds_since_reference_date());
        static_cast<void>(value.integer_value());
        const auto visit = [&](const platform::property_list_value &found) {
            if (!found.is(value_kind::absent))
                waiting.push_back(found);
        };
        const int count = value.count();
        for (int index = -1; index <= count && index < most_elements; ++index)
            visit(value.at(index));
        for (const QString &key : keys)
            visit(value.value(key));
    }
}

// For a fuzzer's input: reads it as a list after `prefix`.
inline void read_and_walk(const char *prefix, const std::uint8_t *data, std::size_t size)
{
    static platform::property_list list;
    QByteArray bytes(prefix);
    bytes.append(reinterpret_cast<const char *>(data), static_cast<int>(size));
    list.load_bytes(bytes);
    walk_property_list(list.root());
}

} // namespace fuzz
