// Escaped texts, versions, lists and paths: the first byte picks helper and encoding, the rest is
// the text.
#include "fuzzed_text.h"
#include "support/percent_decoding.h"
#include "support/plugin_static_function.h"

#include <iterator>

namespace {

using fuzzed::require;
using library = plugin_static_function;

bool has_lone_surrogate(const QString &text)
{
    for (int i = 0; i < text.size(); ++i) {
        const bool pair =
            text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (text.at(i).isSurrogate() && !pair)
            return true;
        i += pair ? 1 : 0;
    }
    return false;
}

void check_escapes(const QString &text)
{
    const QString decoded = library::convert_string_to_unicode(text);
    require(decoded.size() <= text.size());
    require(has_lone_surrogate(text) || !has_lone_surrogate(decoded));
    require(text.contains(QLatin1String("\\U")) || decoded == text);
}

void check_percent_decoding(const QString &text)
{
    const QString decoded = support::percent_decoded(text);
    require(text.contains(QLatin1Char('%')) || has_lone_surrogate(text) || decoded == text);
    require(!has_lone_surrogate(decoded));
}

void check_version(const QString &text)
{
    library::source_os_version_full = text;
    for (const char *scheme : {"macOS", "iOS_UID", "winOS"})
        library::get_source_os_scan_version(QLatin1String(scheme));
    library::get_source_os_scan_version(text);
}

void check_lists(const QString &text)
{
    const QStringList parent = text.section(QLatin1Char('|'), 0, 0).split(QLatin1Char(','));
    const QStringList child = text.section(QLatin1Char('|'), 1).split(QLatin1Char(','));
    const QStringList unmatched = library::get_unmatched_varible_list_of_parentlist(parent, child);
    int next = 0;
    for (const QString &item : parent) {
        const bool kept = next < unmatched.size() && unmatched.at(next) == item;
        require(kept != child.contains(item));
        next += kept ? 1 : 0;
    }
    require(next == unmatched.size());
}

// Below a folder that holds nothing, so that no text reaches the machine's own files.
void check_size(const QString &text)
{
    require(library::mining_size(QStringLiteral("/var/empty/none/") +
                                 text.simplified().remove(QLatin1String("..")))
                .isNull());
}

using helper = void (*)(const QString &text);

constexpr helper helpers[] = {check_escapes, check_version, check_lists, check_size,
                              check_percent_decoding};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const helper chosen = helpers[data[0] / 2 % std::size(helpers)];
    chosen(fuzzed::text(data[0], data + 1, size - 1));
    return 0;
}
