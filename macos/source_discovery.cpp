// Where the client keeps its data in a user's home.
#include "cyberduck_macos.h"

#include "support/plugin_static_function.h"
#include "support/source_boundary.h"

namespace {

constexpr char find_signature[] = "void cyberduck_macos::find_source_file()";

// The older place wins: a user's data are in one of the two, and what was left in the other by a
// change of the client's edition is not in use.
constexpr char application_support[] = "/Library/Application Support/Cyberduck/";
constexpr char group_container[] =
    "/Library/Group Containers/G69SCX94XU.duck/Library/Application Support/duck/";
constexpr char preferences_file[] = "/Library/Preferences/ch.sudo.cyberduck.plist";

// Attributes that the transfers extractor reads itself, whatever the examiner selects.
constexpr const char *own_attributes[] = {
    "kMDItemDateAdded",
    "kMDItemKind",
    "kMDItemContentCreationDate",
    "kMDItemContentModificationDate",
    "kMDItemContentType",
    "kMDItemFSContentChangeDate",
    "kMDItemFSCreationDate",
    "kMDItemFSName",
    "kMDItemFSNodeCount",
    "kMDItemWhereFroms",
    "kMDItemLatitude",
    "kMDItemLongitude",
    "kMDItemAltitude",
    "org_bittorrent_torrent_filenames",
    "kMDItemUsedDates",
    "kMDItemLastUsedDate",
};

// Looks for places; a folder that does not let its entries be looked up is told once.
class search
{
public:
    explicit search(const QString &root)
        : boundary_(root)
    {
    }

    // A place behind a link that leaves the source counts as found: its extractor tells of it.
    bool is_there(const QString &path)
    {
        const support::resolved_path place = boundary_.resolve(path);
        if (place.where != support::reach::denied)
            return place.where != support::reach::missing;
        if (!denied_.contains(place.path)) {
            denied_.append(place.path);
            plugin_static_function::app_debug(
                QStringLiteral("[find_source_file] folder open ------FAILED------") + place.path,
                QLatin1String(find_signature));
        }
        return false;
    }

    void append_first_found(const QString &home, const char *folder, QStringList *found)
    {
        for (const char *place : {application_support, group_container}) {
            const QString path = home + QLatin1String(place) + QLatin1String(folder);
            if (is_there(path)) {
                found->append(path);
                return;
            }
        }
    }

private:
    support::source_boundary boundary_;
    QStringList denied_;
};

} // namespace

void cyberduck_macos::find_source_file()
{
    plugin_static_function::app_debug(QStringLiteral("[find_source_file] starts"),
                                      QLatin1String(find_signature));
    search places(fs_extraction_source_path);
    const QString users = fs_extraction_source_path + QStringLiteral("Users/");
    bookmarks_dir_list.clear();
    history_dir_list.clear();
    transfers_dir_list.clear();
    preferences_file_list.clear();
    for (const QString &user : qAsConst(system_user_list)) {
        const QString home = users + user;
        places.append_first_found(home, "Bookmarks/", &bookmarks_dir_list);
        places.append_first_found(home, "History/", &history_dir_list);
        places.append_first_found(home, "Transfers/", &transfers_dir_list);
        const QString preferences = home + QLatin1String(preferences_file);
        if (places.is_there(preferences))
            preferences_file_list.append(preferences);
    }
    plugin_static_function::app_debug(QStringLiteral("[find_source_file] ends"),
                                      QLatin1String(find_signature));
}

void cyberduck_macos::filter_extended_attribute_list()
{
    QStringList own;
    for (const char *name : own_attributes)
        own.append(QLatin1String(name));
    extended_attributes_list = plugin_static_function::get_unmatched_varible_list_of_parentlist(
        extended_attributes_list, own);
}
