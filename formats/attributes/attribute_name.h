// Names of extended attributes. Each way by which evidence arrives changes them.
#pragma once

#include <QByteArray>
#include <QList>

namespace formats {

// The name that macOS gave an attribute, found in the name that this machine lists.
struct attribute_name
{
    QByteArray canonical;   // without prefix, suffix and copying flags; "com.apple.FinderInfo"
    int preference = 0;     // 0 is asked first: "osx.", bare, "user.", "user.DosStream."
    bool has_flags = false; // whether copying flags ("#S") were cut
};

[[nodiscard]] attribute_name canonical_attribute_name(const QByteArray &listed);

// What this machine puts in front of the canonical name: "osx.", "user.", "user.DosStream." or "".
[[nodiscard]] QByteArray attribute_prefix(const QByteArray &listed);

// Cuts "#" and letters off the end: they say how macOS copies the attribute. Only the name of the
// last use keeps them, because it is known by them.
[[nodiscard]] QByteArray without_copying_flags(const QByteArray &name);

// The names to try where this machine refuses to list names, in order of preference.
[[nodiscard]] QList<QByteArray> possible_listed_names(const QByteArray &canonical);

} // namespace formats
