#include "formats/attributes/attribute_name.h"

#include <algorithm>

namespace formats {

namespace {

constexpr char last_used_name[] = "com.apple.lastuseddate#PS";
constexpr char stream_suffix[] = ":$DATA";

struct arrival
{
    const char *prefix;
    int preference;
};

// Longest first, for one is the beginning of another.
constexpr arrival arrivals[] = {{"user.DosStream.", 3}, {"user.", 2}, {"osx.", 0}};
constexpr arrival bare = {"", 1};

// Characters that Windows names cannot hold travel as U+F020 to U+F029: EF 80 A0 to EF 80 A9.
constexpr char carrier[] = "\xef\x80";
constexpr int carrier_length = 2;
constexpr char first_carried = '\xa0';
constexpr char carried[] = {'"', '*', ':', '<', '>', '?', '\\', '|', ' ', '.'};

QByteArray with_carried_characters(const QByteArray &name)
{
    QByteArray plain;
    plain.reserve(name.size());
    for (int i = 0; i < name.size(); ++i) {
        const bool is_carrier = name.size() - i > carrier_length &&
                                std::equal(carrier, carrier + carrier_length, name.data() + i);
        const int index = is_carrier ? static_cast<quint8>(name[i + carrier_length]) -
                                           static_cast<quint8>(first_carried)
                                     : -1;
        if (index < 0 || index >= static_cast<int>(sizeof carried)) {
            plain += name[i];
            continue;
        }
        plain += carried[index];
        i += carrier_length;
    }
    return plain;
}

arrival way_of(const QByteArray &listed)
{
    for (const arrival &way : arrivals) {
        if (listed.startsWith(way.prefix))
            return way;
    }
    return bare;
}

bool is_letter(char character)
{
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

} // namespace

QByteArray without_copying_flags(const QByteArray &name)
{
    if (name == last_used_name)
        return name;
    const int mark = name.lastIndexOf('#');
    if (mark < 0 || mark + 1 == name.size())
        return name;
    return std::all_of(name.cbegin() + mark + 1, name.cend(), is_letter) ? name.left(mark) : name;
}

QByteArray attribute_prefix(const QByteArray &listed)
{
    return way_of(listed).prefix;
}

attribute_name canonical_attribute_name(const QByteArray &listed)
{
    const arrival way = way_of(listed);
    attribute_name result;
    result.preference = way.preference;
    QByteArray name = listed.mid(static_cast<int>(qstrlen(way.prefix)));
    constexpr int suffix_length = sizeof stream_suffix - 1;
    if (qstricmp(name.right(suffix_length).constData(), stream_suffix) == 0)
        name.chop(suffix_length);
    name = with_carried_characters(name);
    result.canonical = without_copying_flags(name);
    result.has_flags = result.canonical != name;
    return result;
}

QList<QByteArray> possible_listed_names(const QByteArray &canonical)
{
    return {"osx." + canonical, canonical, "user." + canonical};
}

} // namespace formats
