// Comparison of a path's names with those in a store.
#pragma once

#include <QString>

#include <string_view>

namespace formats {

// How well two names agree; a greater value is the better match.
enum class name_match {
    none,
    without_case,
    with_colon_as_slash, // the Finder's "/" is ":" in a path
    exact                // after normalisation: accents are composed on some volumes only
};

// One component of a path, prepared to be compared with many stored names.
class spotlight_name
{
public:
    explicit spotlight_name(const QString &component);
    // Equal for all names that match at all.
    [[nodiscard]] quint32 hash() const { return hash_; }
    [[nodiscard]] name_match compare(std::string_view stored_utf8) const;

    // The hash of a stored name.
    [[nodiscard]] static quint32 hash_of(std::string_view stored_utf8);

private:
    QByteArray utf8_;
    QString composed_;
    QString with_slashes_; // composed, ":" and "/" made equal
    QString folded_;       // the same without case
    quint32 hash_ = 0;
};

// Normalised form: names that differ only in how accents are coded become equal.
[[nodiscard]] QString composed_name(std::string_view utf8);

} // namespace formats
