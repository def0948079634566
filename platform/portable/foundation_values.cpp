#include "platform/foundation_values.h"

#include "platform/portable/foundation_stand_ins.h"

#include <QDateTime>
#include <QLocale>

#include <cmath>

namespace platform {

release_pool::release_pool()
    : pool_(nullptr)
{
}

release_pool::~release_pool() = default;

QString text_of_cfstring(const __CFString *text)
{
    return text_of_key(text);
}

QString text_of_key(const void *key)
{
    return key == nullptr ? QString() : static_cast<const dictionary_key *>(key)->text;
}

formats::property_list_value look_up(const void *key, void *dictionary)
{
    if (key == nullptr || dictionary == nullptr)
        return {};
    return static_cast<dictionary_source *>(dictionary)->value(text_of_key(key));
}

std::optional<QString> formatted_local_date(const NSDate *date, const NSObject *object)
{
    const auto *tested = reinterpret_cast<const object_stand_in *>(object);
    const auto *shown = reinterpret_cast<const object_stand_in *>(date);
    if (tested == nullptr || shown == nullptr || tested->kind != formats::value_kind::date)
        return std::nullopt;
    const double milliseconds = std::floor(shown->epoch_seconds) * 1000.0;
    if (!(std::fabs(milliseconds) < 9.0e18))
        return std::nullopt;
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(milliseconds));
    return QLocale::c().toString(local, QStringLiteral("dd-MMM-yyyy,HH:mm:ss AP"));
}

} // namespace platform
