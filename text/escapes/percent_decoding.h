// The escapes of addresses.
#pragma once

#include <QString>

namespace text {

// Turns "%" and two hexadecimal digits into the byte that they name, all bytes together into UTF-8
// text. Any other "%" stays: it is a character of the text, not an escape, and Qt's own decoding
// would take the characters behind it for digits.
[[nodiscard]] QString percent_decoded(const QString &text);

} // namespace text
