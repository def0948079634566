// Reads texts of a source as times, values or names. The first byte picks the reader and the
// encoding, the rest is the text.
#include "platform/spotlight_item.h"
#include "text/dates/date_parsing.h"
#include "text/escapes/percent_decoding.h"
#include "host_interface/library/plugin_static_function.h"
#include "extraction/copies/used_dates.h"

#include <QLocale>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <vector>

namespace {

using library = plugin_static_function;

// An odd `encoding` takes the bytes as UTF-16 units, unpaired surrogates included.
QString text_of(std::uint8_t encoding, const std::uint8_t *data, size_t size)
{
    if (encoding % 2 == 0)
        return QString::fromUtf8(reinterpret_cast<const char *>(data), int(size));
    std::vector<ushort> units(size / sizeof(ushort));
    if (!units.empty())
        std::memcpy(units.data(), data, units.size() * sizeof(ushort));
    return QString::fromUtf16(units.data(), int(units.size()));
}

void require(bool holds)
{
    if (!holds)
        std::abort();
}

class item_of_text final : public platform::spotlight_item
{
public:
    explicit item_of_text(const QString &text)
        : text_(text)
    {
    }
    std::optional<platform::attribute_description> attribute(const QString &) const override
    {
        return platform::attribute_description{text_, text_};
    }

private:
    QString text_;
};

void check_wall_clock(const QString &text, const char *pattern)
{
    const QDateTime ours = text::parse_wall_clock(text, QLatin1String(pattern));
    const QDateTime theirs = QLocale::c().toDateTime(text, QLatin1String(pattern));
    require(ours.isValid() == theirs.isValid());
    require(!ours.isValid() || (ours.date() == theirs.date() && ours.time() == theirs.time()));
    if (ours.isValid())
        require(text::epoch_of_local_wall_clock(ours) == text::epoch_seconds(ours));
}

void check_iso_date(const QString &text)
{
    const QDateTime ours = text::parse_iso_date(text);
    const QDateTime theirs = QDateTime::fromString(text, Qt::ISODate);
    require(ours.isValid() == theirs.isValid() && (!ours.isValid() || ours == theirs));
}

void check_used_dates(const QString &text)
{
    const auto dates = extraction::used_dates_from(item_of_text(text), library::run_cancellation(),
                                                   library::run_log());
    require(dates.used_dates.isEmpty() == dates.first_date.isNull());
    for (const QString &date : dates.used_dates)
        require(dates.first_date.toLongLong() <= date.toLongLong() &&
                date.toLongLong() <= dates.last_date.toLongLong());
}

void check_where_from(const QString &text)
{
    const QString value = library::get_filtered_wherefrom_value(text);
    require(!value.contains(QLatin1Char('"')) && !value.contains(QLatin1Char(',')));
    require(value.trimmed() == value && value.isValidUtf16());
}

void check_suffix(const QString &text)
{
    const QString suffix = library::mining_suffix(text);
    require(!suffix.contains(QLatin1Char('.')) && !suffix.contains(QLatin1Char('/')));
    require(text.contains(suffix));
}

void check_escapes(const QString &text)
{
    const QString decoded = library::convert_string_to_unicode(text);
    require(decoded.size() <= text.size());
    require(!text.isValidUtf16() || decoded.isValidUtf16());
    require(text.contains(QLatin1String("\\U")) || decoded == text);
}

void check_percent_decoding(const QString &text)
{
    const QString decoded = text::percent_decoded(text);
    require(text.contains(QLatin1Char('%')) || !text.isValidUtf16() || decoded == text);
    require(decoded.isValidUtf16());
}

void check_version(const QString &text)
{
    library::source_os_version_full = text;
    library::get_source_os_scan_version(QStringLiteral("macOS"));
    library::get_source_os_scan_version(text);
}

using reader = void (*)(const QString &text);

constexpr reader readers[] = {
    [](const QString &text) { library::convert_apple_time_to_epoch(text); },
    [](const QString &text) { library::convert_google_time_to_epoch(text); },
    [](const QString &text) { library::convert_timezone_to_seconds(text); },
    [](const QString &text) { library::convert_timestamp_to_human_readable_in_UTC(text); },
    [](const QString &text) { library::get_human_readable_time(text); },
    [](const QString &text) { library::convert_human_readable_to_epoch_1(text); },
    [](const QString &text) { library::convert_human_readable_to_epoch_2(text); },
    [](const QString &text) { library::convert_human_readable_to_epoch_3(text); },
    [](const QString &text) { library::convert_T_Z_time_to_epoch(text); },
    [](const QString &text) { library::get_datetime_from_string_with_iso_date(text); },
    [](const QString &text) { library::get_posix_timestamp(text, QStringLiteral("/proc/self/")); },
    [](const QString &text) { check_wall_clock(text, "dd MMM yyyy hh:mm:ss"); },
    [](const QString &text) { check_wall_clock(text, "MMM d, yyyy, h:mm:ss AP"); },
    [](const QString &text) { check_wall_clock(text, "dd-MMM-yyyy,HH:mm:ss a"); },
    check_iso_date,
    check_used_dates,
    [](const QString &text) { library::get_filtered_number_value(text); },
    [](const QString &text) { library::get_filtered_boolean_value(text); },
    [](const QString &text) { library::get_filtered_cfstring_value(text); },
    [](const QString &text) { library::get_filtered_string_value(text); },
    [](const QString &text) { library::get_filtered_date_value(text); },
    check_where_from,
    [](const QString &text) { library::human_readable_size(text); },
    check_suffix,
    check_escapes,
    check_version,
    check_percent_decoding,
};

} // namespace

// Ours are compared with Qt's parsers, which are right in this zone only.
extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qputenv("TZ", "UTC");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const reader chosen = readers[data[0] / 2 % std::size(readers)];
    chosen(text_of(data[0], data + 1, size - 1));
    return 0;
}
