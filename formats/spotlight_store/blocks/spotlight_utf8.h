// Texts of an index.
#pragma once

#include <QString>

#include <string_view>

namespace formats {

// Wrong bytes become U+FFFD; nothing is left out, a byte-order mark in front neither. Never null.
[[nodiscard]] QString text_from_utf8(std::string_view utf8);

} // namespace formats
