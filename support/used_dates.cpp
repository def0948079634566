#include "used_dates.h"

#include "date_parsing.h"

#include <algorithm>
#include <vector>

namespace support {

namespace {

QString attribute_text(const platform::spotlight_item &item, const char *name)
{
    const auto description = item.attribute(QLatin1String(name));
    return description ? description->c_string.trimmed() : QString();
}

qint64 marked_as_utc(const QString &date)
{
    QDateTime time = plugin_static_function::get_datetime_from_string_with_iso_date(date);
    time.setTimeSpec(Qt::UTC);
    return epoch_seconds(time);
}

// The elements of a printed list: ("2020-05-09 10:45:12 +0000", ...).
QStringList printed_elements(QString list)
{
    for (const char sign : {'(', ')', '"'})
        list.remove(QLatin1Char(sign));
    return list.split(QLatin1Char(','));
}

} // namespace

struct_used_date used_dates_from(const platform::spotlight_item &item)
{
    struct_used_date dates;
    const QString last_used = attribute_text(item, "kMDItemLastUsedDate");
    if (!last_used.isEmpty())
        dates.last_used_date = QString::number(marked_as_utc(last_used));

    std::vector<qint64> used;
    for (const QString &element : printed_elements(attribute_text(item, "kMDItemUsedDates"))) {
        if (plugin_static_function::bool_cancel_extraction)
            break;
        // An empty list prints one empty element; that is no date.
        if (element.trimmed().isEmpty())
            continue;
        used.push_back(marked_as_utc(element.trimmed()));
        dates.used_dates.append(QString::number(used.back()));
    }
    if (!used.empty()) {
        const auto [first, last] = std::minmax_element(used.cbegin(), used.cend());
        dates.first_date = QString::number(*first);
        dates.last_date = QString::number(*last);
    }
    return dates;
}

} // namespace support

struct_used_date plugin_static_function::extract_used_date(QString file_path)
{
    platform::spotlight_catalog *catalog = metadata_catalog();
    if (catalog == nullptr)
        return {};
    const auto item = catalog->item(file_path);
    return item ? support::used_dates_from(*item) : struct_used_date{};
}
