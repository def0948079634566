#include "inventory/places/client_places.h"

namespace inventory {

namespace {

constexpr char older_folder[] = "older folder";
constexpr char group_container[] = "group container";

} // namespace

QString kind_name(list_kind kind)
{
    switch (kind) {
    case list_kind::bookmark:
        return QStringLiteral("bookmark");
    case list_kind::history:
        return QStringLiteral("history");
    case list_kind::transfer:
        return QStringLiteral("transfer");
    case list_kind::preferences:
        break;
    }
    return QStringLiteral("preferences");
}

QString tab_of(list_kind kind)
{
    const QString name = kind_name(kind);
    const bool is_plural = kind == list_kind::bookmark || kind == list_kind::transfer;
    return is_plural ? name + QLatin1Char('s') : name;
}

const std::vector<client_place> &client_places()
{
    static const std::vector<client_place> places = {
        {list_kind::bookmark, older_folder, "Library/Application Support/Cyberduck/Bookmarks/",
         ".duck"},
        {list_kind::bookmark, group_container,
         "Library/Group Containers/G69SCX94XU.duck/Library/Application Support/duck/Bookmarks/",
         ".duck"},
        {list_kind::history, older_folder, "Library/Application Support/Cyberduck/History/",
         ".duck"},
        {list_kind::history, group_container,
         "Library/Group Containers/G69SCX94XU.duck/Library/Application Support/duck/History/",
         ".duck"},
        {list_kind::transfer, older_folder, "Library/Application Support/Cyberduck/Transfers/",
         ".cyberducktransfer"},
        {list_kind::transfer, group_container,
         "Library/Group Containers/G69SCX94XU.duck/Library/Application Support/duck/Transfers/",
         ".cyberducktransfer"},
        {list_kind::preferences, "preferences", "Library/Preferences/ch.sudo.cyberduck.plist", ""},
    };
    return places;
}

std::vector<searched_place> places_of(const searched_home &home)
{
    std::vector<searched_place> places;
    for (const client_place &place : client_places()) {
        const QLatin1String path(place.path);
        places.push_back({home.user, place.kind, QLatin1String(place.name), home.path + path,
                          home.shown + path, QByteArray(place.suffix)});
    }
    return places;
}

} // namespace inventory
