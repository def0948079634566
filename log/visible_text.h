// Texts of the examined source in lines for people: the debug log, a terminal.
#pragma once

#include <QString>

namespace logging {

// The text with everything that could break a line, move the cursor or reorder what stands beside
// it written out as \u and four hexadecimal digits, one for each UTF-16 unit: controls, invisible
// formatting such as overrides of the writing direction, separators of lines and paragraphs, half
// surrogate pairs. A backslash before a "u" is written as \u005c, any other stays: each \u of the
// result stands for one unit, so the text can be had back exactly.
[[nodiscard]] QString visible_text(const QString &text);

} // namespace logging
