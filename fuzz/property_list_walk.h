// Asks a loaded property list for all its values, up to a bound.
#pragma once

#include "platform/portable/foundation_stand_ins.h"
#include "platform/property_list.h"
#include "host_interface/library/plugin_static_function.h"

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace fuzz {

// The host's readers of single values, each for one key of a dictionary.
inline void read_for_host(const formats::property_list_value &value, const QString &name)
{
    using library = plugin_static_function;
    platform::listed_dictionary listed(value);
    platform::dictionary_key named{name};
    void *const dictionary = platform::as_pointer(&listed);
    void *const key = platform::as_pointer(&named);
    library::get_nsstring_values(key, dictionary);
    library::get_nsnumber_values(key, dictionary);
    library::get_nsnumber_values_yes_no(key, dictionary);
    for (const auto reader :
         {library::get_nsnumber_key_and_value_yes_no, library::get_nsstring_key_and_values,
          library::get_nsnumber_key_and_values, library::get_nsarray_key_and_values})
        reader(key, dictionary, QStringLiteral("label"));
}

// Lists may hold themselves: stops after a fixed number of values.
inline void walk_property_list(const formats::property_list_value &root)
{
    using formats::value_kind;
    constexpr int most_values = 500;
    constexpr int most_elements = 100;
    constexpr int most_read_for_host = 3; // each asks for whole arrays
    const QString keys[] = {QStringLiteral("Path"), QStringLiteral("a"), QStringLiteral("\u00e9"),
                            QString()};
    std::vector<formats::property_list_value> waiting = {root};
    for (int done = 0; done < most_values && !waiting.empty(); ++done) {
        const formats::property_list_value value = waiting.back();
        waiting.pop_back();
        if (value.is(value_kind::text) == value.text().isNull() ||
            value.class_name().isNull() != value.is(value_kind::absent) ||
            (value.is_floating() && !value.is_number()))
            __builtin_trap();
        static_cast<void>(value.double_value());
        platform::object_stand_in date{value.kind(), value.seconds_since_reference_date()};
        plugin_static_function::convert_nsdate_to_epoch(platform::as_nsdate(&date),
                                                        platform::as_nsobject(&date));
        static_cast<void>(value.integer_value());
        const auto visit = [&](const formats::property_list_value &found) {
            if (!found.is(value_kind::absent))
                waiting.push_back(found);
        };
        const int count = value.count();
        for (int index = -1; index <= count && index < most_elements; ++index)
            visit(value.at(index));
        for (const QString &key : keys) {
            visit(value.value(key));
            if (done < most_read_for_host)
                read_for_host(value, key);
        }
    }
}

// Reads `prefix` and the fuzzer's input as a list.
inline void read_and_walk(const char *prefix, const std::uint8_t *data, std::size_t size)
{
    static platform::property_list list;
    QByteArray bytes(prefix);
    bytes.append(reinterpret_cast<const char *>(data), static_cast<int>(size));
    list.load_bytes(bytes);
    walk_property_list(list.root());
}

} // namespace fuzz
