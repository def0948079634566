// Texts on their way into a database, which holds them as UTF-8.
#pragma once

#include <QByteArray>
#include <QString>

namespace text {

// The text with U+FFFD for each half of a surrogate pair that stands alone. UTF-8 has no form for a
// half: SQLite stores bytes that strict readers refuse, or takes the next character as the other
// half. Null stays null.
[[nodiscard]] QString whole_characters(const QString &text);

// The same as the bytes that a database holds. Null stays null.
[[nodiscard]] QByteArray stored_utf8(const QString &text);

// The same, to be bound to a query of Qt's, which gives SQLite UTF-16. From its front SQLite takes
// one byte-order mark away, and swaps all bytes behind a swapped one.
[[nodiscard]] QString text_for_query(const QString &text);

} // namespace text
