#include "formats/property_list/xml/xml_list_encoding.h"

#include "formats/property_list/base/property_list_limits.h"

#include <QLatin1String>

#include <algorithm>
#include <cstring>

namespace formats {

namespace {

enum class encoding { utf8, ascii, latin1, utf16_little, utf16_big, unsupported };

struct detected_encoding
{
    encoding kind = encoding::utf8;
    int mark_bytes = 0; // of the byte-order mark
};

bool starts_with(const QByteArray &bytes, const char *start, int length)
{
    return bytes.size() >= length && std::memcmp(bytes.constData(), start, size_t(length)) == 0;
}

// The name as declared in the header; empty when there is none.
QLatin1String declared_name(const QByteArray &bytes)
{
    if (!starts_with(bytes, "<?xml", 5))
        return {};
    constexpr char attribute[] = "encoding=";
    const char *begin = bytes.constData() + 5;
    const char *end = bytes.constData() + bytes.size();
    // The header ends at its first "?" or ">", whatever quotes it holds.
    end = std::find_if(begin, end, [](char unit) { return unit == '?' || unit == '>'; });
    const char *found = std::search(begin, end, attribute, attribute + sizeof attribute - 1);
    if (end - found <= std::ptrdiff_t(sizeof attribute - 1))
        return {};
    found += sizeof attribute - 1;
    if (*found != '"' && *found != '\'')
        return {};
    const char *name_end = std::find(found + 1, end, *found);
    if (name_end == end)
        return {};
    return QLatin1String(found + 1, name_end);
}

encoding declared_encoding(QLatin1String name)
{
    struct known_encoding
    {
        const char *name;
        encoding kind;
    };
    constexpr known_encoding known[] = {
        {"utf-8", encoding::utf8},        {"us-ascii", encoding::ascii},
        {"ascii", encoding::ascii},       {"iso-8859-1", encoding::latin1},
        {"iso_8859-1", encoding::latin1}, {"latin1", encoding::latin1},
    };
    if (name.size() == 0)
        return encoding::utf8;
    for (const known_encoding &candidate : known) {
        if (name.compare(QLatin1String(candidate.name), Qt::CaseInsensitive) == 0)
            return candidate.kind;
    }
    return encoding::unsupported;
}

detected_encoding detect(const QByteArray &bytes)
{
    if (starts_with(bytes, "\xef\xbb\xbf", 3))
        return {encoding::utf8, 3};
    if (starts_with(bytes, "\xff\xfe\0\0", 4) || starts_with(bytes, "\0\0\xfe\xff", 4))
        return {encoding::unsupported, 4};
    if (starts_with(bytes, "\xff\xfe", 2))
        return {encoding::utf16_little, 2};
    if (starts_with(bytes, "\xfe\xff", 2))
        return {encoding::utf16_big, 2};
    // A list begins with an ASCII character: the zero beside it tells the byte order.
    if (bytes.size() > 2 && bytes[0] == '\0')
        return {encoding::utf16_big, 0};
    if (bytes.size() > 2 && bytes[1] == '\0')
        return {encoding::utf16_little, 0};
    return {declared_encoding(declared_name(bytes)), 0};
}

char *put_utf8(uint code_point, char *to)
{
    const auto put = [&to](uint byte) { *to++ = static_cast<char>(byte); };
    if (code_point < 0x80) {
        put(code_point);
    } else if (code_point < 0x800) {
        put(0xc0 | (code_point >> 6));
        put(0x80 | (code_point & 0x3f));
    } else if (code_point < 0x10000) {
        put(0xe0 | (code_point >> 12));
        put(0x80 | ((code_point >> 6) & 0x3f));
        put(0x80 | (code_point & 0x3f));
    } else {
        put(0xf0 | (code_point >> 18));
        put(0x80 | ((code_point >> 12) & 0x3f));
        put(0x80 | ((code_point >> 6) & 0x3f));
        put(0x80 | (code_point & 0x3f));
    }
    return to;
}

// Null when a surrogate has no partner or half a unit is left over.
char *convert_utf16(const uchar *from, const uchar *end, bool big, char *to)
{
    if ((end - from) % 2 != 0)
        return nullptr;
    const auto unit_at = [big](const uchar *at) {
        return big ? uint(at[0]) << 8 | at[1] : uint(at[1]) << 8 | at[0];
    };
    for (; from < end; from += 2) {
        uint code_point = unit_at(from);
        if (code_point >= 0xd800 && code_point < 0xe000) {
            const uint low = end - from >= 4 ? unit_at(from + 2) : 0;
            if (code_point >= 0xdc00 || low < 0xdc00 || low >= 0xe000)
                return nullptr;
            code_point = 0x10000 + ((code_point - 0xd800) << 10) + (low - 0xdc00);
            from += 2;
        }
        to = put_utf8(code_point, to);
    }
    return to;
}

xml_list_text convert(const QByteArray &bytes, detected_encoding from, QByteArray *converted)
{
    if (bytes.size() > max_converted_list_bytes)
        return {};
    const auto *begin = reinterpret_cast<const uchar *>(bytes.constData()) + from.mark_bytes;
    const auto *source_end = reinterpret_cast<const uchar *>(bytes.constData()) + bytes.size();
    // Two bytes of UTF-16 give three at most, one of ISO-8859-1 gives two.
    converted->resize(bytes.size() * 2);
    char *end = converted->data();
    if (from.kind == encoding::latin1) {
        for (; begin < source_end; ++begin)
            end = put_utf8(*begin, end);
    } else {
        end = convert_utf16(begin, source_end, from.kind == encoding::utf16_big, end);
    }
    if (end == nullptr)
        return {};
    *end = '\0';
    return {converted->data(), end};
}

} // namespace

xml_list_text xml_list_as_utf8(QByteArray *bytes, QByteArray *converted)
{
    const detected_encoding found = detect(*bytes);
    char *begin = bytes->data();
    char *end = begin + bytes->size();
    switch (found.kind) {
    case encoding::utf8:
        return {begin + found.mark_bytes, end};
    case encoding::ascii:
        if (std::any_of(begin, end, [](char unit) { return uchar(unit) >= 0x80; }))
            return {};
        return {begin, end};
    case encoding::latin1:
    case encoding::utf16_little:
    case encoding::utf16_big:
        return convert(*bytes, found, converted);
    case encoding::unsupported:
        break;
    }
    return {};
}

} // namespace formats
