// Texts that are to be times: the first byte picks converter and encoding, the rest is the text.
#include "fuzzed_text.h"
#include "platform/spotlight_item.h"
#include "support/date_parsing.h"
#include "support/plugin_static_function.h"
#include "support/used_dates.h"

#include <QLocale>

#include <algorithm>
#include <iterator>

namespace {

using fuzzed::require;
using library = plugin_static_function;

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
    const QDateTime ours = support::parse_wall_clock(text, QLatin1String(pattern));
    const QDateTime theirs = QLocale::c().toDateTime(text, QLatin1String(pattern));
    require(ours.isValid() == theirs.isValid());
    require(!ours.isValid() || (ours.date() == theirs.date() && ours.time() == theirs.time()));
    if (ours.isValid())
        require(support::epoch_of_local_wall_clock(ours) == support::epoch_seconds(ours));
}

void check_iso_date(const QString &text)
{
    const QDateTime ours = support::parse_iso_date(text);
    const QDateTime theirs = QDateTime::fromString(text, Qt::ISODate);
    require(ours.isValid() == theirs.isValid() && (!ours.isValid() || ours == theirs));
}

void check_used_dates(const QString &text)
{
    const struct_used_date dates = support::used_dates_from(item_of_text(text));
    require(dates.used_dates.isEmpty() == dates.first_date.isNull());
    for (const QString &date : dates.used_dates)
        require(dates.first_date.toLongLong() <= date.toLongLong() &&
                date.toLongLong() <= dates.last_date.toLongLong());
}

using converter = void (*)(const QString &text);

constexpr converter converters[] = {
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
    [](const QString &text) {
        [[maybe_unused]] const qint64 epoch = support::epoch_from_formatted_local_date(text);
    },
    [](const QString &text) { library::get_posix_timestamp(text, QStringLiteral("/proc/self/")); },
    [](const QString &text) { check_wall_clock(text, "dd MMM yyyy hh:mm:ss"); },
    [](const QString &text) { check_wall_clock(text, "MMM d, yyyy, h:mm:ss AP"); },
    [](const QString &text) { check_wall_clock(text, "dd-MMM-yyyy,HH:mm:ss a"); },
    check_iso_date,
    check_used_dates,
};

} // namespace

// Qt's own parsers, with which ours are compared, are right in this zone only.
extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qputenv("TZ", "UTC");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const converter chosen = converters[data[0] / 2 % std::size(converters)];
    chosen(fuzzed::text(data[0], data + 1, size - 1));
    return 0;
}
