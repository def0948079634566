// Turns the bytes of macOS's own extended attributes into the values that Spotlight makes of them.
// The bytes come from a source: every form is checked, and what does not fit gives no value.
#pragma once

#include "formats/attributes/spotlight_value.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

namespace formats {

// The bytes of the attribute of that canonical name ("com.apple.metadata:kMDItemWhereFroms"), as
// one file has them; nullopt when it has none.
using attribute_lookup = std::function<std::optional<QByteArray>(const QByteArray &canonical_name)>;

// The Spotlight attribute `name` of a file whose extended attributes are read by `look_up`.
[[nodiscard]] std::optional<spotlight_value> spotlight_attribute(const QString &name,
                                                                 const attribute_lookup &look_up);

// The value of an attribute "com.apple.metadata:...": a property list, binary or XML, or a text in
// UTF-8. A NUL that a file server appended is ignored. Parts of a list that have no text (raw data,
// dictionaries, lists, dates out of range) are left out.
[[nodiscard]] std::optional<spotlight_value> metadata_value(const QByteArray &bytes);

// The value of "com.apple.lastuseddate#PS": seconds and nanoseconds since 1970 UTC.
[[nodiscard]] std::optional<spotlight_value> last_used_value(const QByteArray &bytes);

// A date; nullopt when it is not finite or too far away to be printed.
[[nodiscard]] std::optional<spotlight_value> date_value(double epoch_seconds);

} // namespace formats
