#include "formats/spotlight_store/tables/spotlight_name.h"

#include "formats/spotlight_store/blocks/spotlight_utf8.h"

#include <algorithm>

namespace formats {

namespace {

class name_hash // FNV-1a over UTF-16 units
{
public:
    void add(char16_t unit) { value_ = (value_ ^ unit) * 16777619U; }
    [[nodiscard]] quint32 value() const { return value_; }

private:
    quint32 value_ = 2166136261U;
};

QString composed(const QString &name)
{
    return name.normalized(QString::NormalizationForm_C);
}

QString with_slashes(QString name)
{
    return name.replace(QLatin1Char(':'), QLatin1Char('/'));
}

QString folded(const QString &name)
{
    return composed(name.toCaseFolded());
}

quint32 hash_text(const QString &key)
{
    name_hash hash;
    for (const QChar unit : key)
        hash.add(unit.unicode());
    return hash.value();
}

bool is_ascii(std::string_view bytes)
{
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

// Must agree with folded(with_slashes(...)) for ASCII.
char16_t folded_ascii(char byte)
{
    if (byte >= 'A' && byte <= 'Z')
        return static_cast<char16_t>(byte - 'A' + 'a');
    return static_cast<char16_t>(byte == ':' ? '/' : byte);
}

} // namespace

spotlight_name::spotlight_name(const QString &component)
    : utf8_(component.toUtf8())
    , composed_(composed(component))
    , with_slashes_(with_slashes(composed_))
    , folded_(folded(with_slashes_))
    , hash_(hash_text(folded_))
{
}

name_match spotlight_name::compare(std::string_view stored_utf8) const
{
    if (stored_utf8 == std::string_view(utf8_.constData(), static_cast<size_t>(utf8_.size())))
        return name_match::exact;
    const QString stored = composed_name(stored_utf8);
    if (stored == composed_)
        return name_match::exact;
    const QString slashed = with_slashes(stored);
    if (slashed == with_slashes_)
        return name_match::with_colon_as_slash;
    return folded(slashed) == folded_ ? name_match::without_case : name_match::none;
}

quint32 spotlight_name::hash_of(std::string_view stored_utf8)
{
    // Most names are ASCII, and an index holds millions of them.
    if (!is_ascii(stored_utf8))
        return hash_text(folded(with_slashes(composed_name(stored_utf8))));
    name_hash hash;
    for (const char byte : stored_utf8)
        hash.add(folded_ascii(byte));
    return hash.value();
}

QString composed_name(std::string_view utf8)
{
    return composed(text_from_utf8(utf8));
}

} // namespace formats
