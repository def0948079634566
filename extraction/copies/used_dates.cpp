#include "extraction/copies/used_dates.h"

#include "text/dates/date_conversion.h"
#include "text/dates/date_parsing.h"

#include <algorithm>
#include <vector>

namespace extraction {

namespace {

constexpr char used_signature[] =
    "static struct_used_date plugin_static_function::extract_used_date(QString)";
// macOS keeps one for each day. The first and the last of some of them would mislead.
constexpr int max_used_dates = 16384;

QString attribute_text(const platform::spotlight_item &item, const char *name)
{
    const auto description = item.attribute(QLatin1String(name));
    return description ? description->c_string.trimmed() : QString();
}

qint64 marked_as_utc(const QString &date, const run::log_sink &log)
{
    QDateTime time = text::get_datetime_from_string_with_iso_date(date, log);
    time.setTimeSpec(Qt::UTC);
    return text::epoch_seconds(time);
}

// The elements of a printed list: ("2020-05-09 10:45:12 +0000", ...).
QStringList printed_elements(QString list)
{
    for (const char sign : {'(', ')', '"'})
        list.remove(QLatin1Char(sign));
    return list.split(QLatin1Char(','));
}

} // namespace

usage_dates used_dates_from(const platform::spotlight_item &item,
                            const run::cancellation &cancelled, const run::log_sink &log)
{
    usage_dates dates;
    const QString last_used = attribute_text(item, "kMDItemLastUsedDate");
    if (!last_used.isEmpty())
        dates.last_used_date = QString::number(marked_as_utc(last_used, log));

    std::vector<qint64> used;
    QStringList elements = printed_elements(attribute_text(item, "kMDItemUsedDates"));
    if (elements.size() > max_used_dates) {
        log.write("[extract_used_date] too many used dates, left out ------FAILED------", QString(),
                  used_signature);
        elements.clear();
    }
    for (const QString &element : qAsConst(elements)) {
        if (cancelled.is_requested())
            break;
        // An empty list prints one empty element; that is no date.
        if (element.trimmed().isEmpty())
            continue;
        used.push_back(marked_as_utc(element.trimmed(), log));
        dates.used_dates.append(QString::number(used.back()));
    }
    if (!used.empty()) {
        const auto [first, last] = std::minmax_element(used.cbegin(), used.cend());
        dates.first_date = QString::number(*first);
        dates.last_date = QString::number(*last);
    }
    return dates;
}

used_dates_reader::used_dates_reader(const QString &root, const run::cancellation &cancelled)
    : boundary_(root, cancelled)
    , cancelled_(cancelled)
    , catalog_(platform::make_spotlight_catalog(boundary_.real_root(), cancelled))
{
}

usage_dates used_dates_reader::of_file(const QString &path, const run::log_sink &log)
{
    const evidence::resolved_path place = boundary_.hold(path);
    if (place.where != evidence::reach::inside)
        return {};
    const auto item = catalog_->item(place);
    return item ? used_dates_from(*item, cancelled_, log) : usage_dates();
}

} // namespace extraction
