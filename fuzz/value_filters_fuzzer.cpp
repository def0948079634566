// Printed values of a hostile source: the first byte picks filter and encoding, the rest is the
// text.
#include "fuzzed_text.h"
#include "support/plugin_static_function.h"
#include "support/text_replace.h"

#include <iterator>

namespace {

using fuzzed::require;
using library = plugin_static_function;

bool is_whole(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    return QString::fromUtf8(bytes.constData(), bytes.size()) == text;
}

// The first of the text's characters is what to replace, the rest where.
void check_replacing(const QString &text)
{
    const QByteArray bytes = text.toLatin1();
    for (int length = 1; length <= qMin(3, bytes.size()); ++length) {
        const QLatin1String before(bytes.constData(), length);
        for (const char *after : {"", "x", "\"("}) {
            QString ours = QString::fromLatin1(bytes).mid(length);
            QString theirs = ours;
            support::replace_every(&ours, before, QLatin1String(after));
            require(ours == theirs.replace(before, QLatin1String(after)));
        }
    }
}

void check_where_from(const QString &text)
{
    const QString value = library::get_filtered_wherefrom_value(text);
    require(!value.contains(QLatin1Char('"')) && !value.contains(QLatin1Char(',')));
    require(value.trimmed() == value && is_whole(value));
}

void check_size(const QString &text)
{
    require(library::human_readable_size(text).isEmpty() == text.trimmed().isEmpty());
}

void check_suffix(const QString &text)
{
    const QString suffix = library::mining_suffix(text);
    require(!suffix.contains(QLatin1Char('.')) && !suffix.contains(QLatin1Char('/')));
    require(text.contains(suffix));
}

using filter = void (*)(const QString &text);

constexpr filter filters[] = {
    [](const QString &text) { library::get_filtered_number_value(text); },
    [](const QString &text) { library::get_filtered_boolean_value(text); },
    [](const QString &text) { library::get_filtered_cfstring_value(text); },
    [](const QString &text) { library::get_filtered_string_value(text); },
    [](const QString &text) { library::get_filtered_date_value(text); },
    check_where_from,
    check_replacing,
    check_size,
    check_suffix,
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const filter chosen = filters[data[0] / 2 % std::size(filters)];
    chosen(fuzzed::text(data[0], data + 1, size - 1));
    return 0;
}
