// The preferences that are shown: key, label, how the value is rendered.
#pragma once

#include "platform/property_list.h"

#include <QString>

#include <cstddef>
#include <iterator>

namespace extraction {

// A stored code and the text that is shown for it; codes are compared case-sensitively.
struct preference_code
{
    const char *code;
    const char *shown;
};

// A view of a table of codes.
class preference_codes
{
public:
    constexpr preference_codes() = default;
    template <size_t Count>
    constexpr preference_codes(const preference_code (&codes)[Count])
        : begin_(codes)
        , end_(codes + Count)
    {
    }
    [[nodiscard]] constexpr const preference_code *begin() const { return begin_; }
    [[nodiscard]] constexpr const preference_code *end() const { return end_; }

private:
    const preference_code *begin_ = nullptr;
    const preference_code *end_ = nullptr;
};

// The text to show for a value; null, i.e. no row, for a value that is missing, of another class
// than the preference has, or an unknown code.
using preference_rendering = QString (*)(const formats::property_list_value &value,
                                         const preference_codes &codes);

struct preference
{
    const char *key;
    const char *label;
    preference_rendering render;
    preference_codes codes;
};

struct preference_list
{
    const preference *first;
    const preference *last;
    [[nodiscard]] const preference *begin() const { return first; }
    [[nodiscard]] const preference *end() const { return last; }
};

// In the order in which rows are written.
[[nodiscard]] preference_list known_preferences();

} // namespace extraction
