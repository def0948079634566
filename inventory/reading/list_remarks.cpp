#include "inventory/reading/list_remarks.h"

#include "text/dates/iso_8601.h"

namespace inventory {

namespace {

constexpr size_t most_notes = 100;
constexpr int most_shown = 30;
constexpr qint64 clocks_may_differ_ms = 24LL * 3600 * 1000;

bool is_time(const QByteArray &path)
{
    return path == "Timestamp" || path == "Access Timestamp" || path == "Host/Access Timestamp";
}

bool is_local_path(const QByteArray &path)
{
    return path.endsWith("/Local Dictionary/Path") || path.endsWith("Folder Dictionary/Path");
}

} // namespace

list_remarks::list_remarks(const QString &root, bool is_volume, qint64 now_ms,
                           const run::cancellation &cancelled)
    : is_volume_(is_volume)
    , root_(root)
    , now_ms_(now_ms)
    , boundary_(root, cancelled)
{
}

QString list_remarks::what_is_at(const QString &recorded)
{
    if (!is_volume_)
        return QStringLiteral("not collected");
    const evidence::resolved_path place = boundary_.hold(root_ + recorded.mid(1));
    switch (place.where) {
    case evidence::reach::inside:
        break;
    case evidence::reach::outside:
        return QStringLiteral("it leads out of the source");
    case evidence::reach::denied:
        return QStringLiteral("it may not be looked at");
    default:
        return QStringLiteral("nothing is there");
    }
    if (place.file->is_folder())
        return QStringLiteral("a folder is there");
    return QStringLiteral("a file of %1 bytes is there").arg(place.file->status().size);
}

std::vector<found_note> list_remarks::of(const list_account &account)
{
    std::vector<found_note> notes;
    const found_list &list = account.list;
    const qint64 latest_ms = now_ms_ + clocks_may_differ_ms;
    const auto modified_ms = account.file ? account.file->times.modified_ms : std::nullopt;
    if (modified_ms && *modified_ms > latest_ms)
        notes.push_back({list.user,
                         list.path,
                         QStringLiteral("the list was changed in the future, at ") +
                             text::iso_8601_utc_of_ms(modified_ms),
                         {},
                         false});
    const QString home = QStringLiteral("/Users/%1/").arg(list.user);
    for (const stored_value &value : account.values) {
        if (notes.size() >= most_notes)
            break;
        const qint64 ms = is_time(value.path) ? value.text.trimmed().toLongLong() : 0;
        if (ms > latest_ms)
            notes.push_back({list.user,
                             list.path,
                             QStringLiteral("%1 is in the future: %2")
                                 .arg(QString::fromUtf8(value.path),
                                      QString::fromUtf8(value.text.trimmed().left(most_shown))),
                             {},
                             false});
        if (!is_local_path(value.path))
            continue;
        const QString recorded = QString::fromUtf8(value.text);
        if (recorded.startsWith(QLatin1Char('/')) && !recorded.startsWith(home))
            notes.push_back({list.user, list.path,
                             QStringLiteral("%1 lies outside of the home: %2")
                                 .arg(QString::fromUtf8(value.path), what_is_at(recorded)),
                             recorded, false});
    }
    return notes;
}

} // namespace inventory
