#include "extraction/source/source_discovery.h"

#include "evidence/folders/source_boundary.h"

#include <QSet>

namespace extraction {

namespace {

constexpr char find_signature[] = "void cyberduck_macos::find_source_file()";

// Rows come from the first of the two that exists. Today's client keeps its data in the group
// container. The older folder may be left over from an earlier edition, or be a link to the other.
constexpr char application_support[] = "/Library/Application Support/Cyberduck/";
constexpr char group_container[] =
    "/Library/Group Containers/G69SCX94XU.duck/Library/Application Support/duck/";
constexpr char preferences_file[] = "/Library/Preferences/ch.sudo.cyberduck.plist";

// Looks for places. Each reason why one could not be looked up is logged once.
class search
{
public:
    search(const QString &root, const run::cancellation &cancelled, const run::log_sink &log)
        : boundary_(root, cancelled)
        , log_(log)
    {
    }

    // A link that leaves the source is not followed: the place counts as missing.
    bool is_there(const QString &path)
    {
        const evidence::resolved_path place = boundary_.resolve(path);
        switch (place.where) {
        case evidence::reach::inside:
            return true;
        case evidence::reach::outside:
            tell_once("[find_source_file] outside the source ------FAILED------", path);
            break;
        case evidence::reach::denied:
            tell_once("[find_source_file] folder open ------FAILED------", place.path);
            break;
        case evidence::reach::ambiguous:
            tell_once("[find_source_file] names differ in case only ------FAILED------", path);
            break;
        case evidence::reach::costly:
            tell_once("[find_source_file] path too long to be followed ------FAILED------", path);
            break;
        case evidence::reach::missing:
            break;
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
    void tell_once(const char *words, const QString &path)
    {
        if (told_.contains(path))
            return;
        told_.insert(path);
        log_.write(words, path, find_signature);
    }

    evidence::source_boundary boundary_;
    const run::log_sink &log_;
    QSet<QString> told_;
};

} // namespace

client_data find_client_data(const QString &source_root, const QStringList &users,
                             const run::cancellation &cancelled, const run::log_sink &log)
{
    log.write("[find_source_file] starts", QString(), find_signature);
    search places(source_root, cancelled, log);
    client_data found;
    for (const QString &user : users) {
        if (cancelled.is_requested())
            break;
        const QString home = source_root + QStringLiteral("Users/") + user;
        places.append_first_found(home, "Bookmarks/", &found.bookmark_folders);
        places.append_first_found(home, "History/", &found.history_folders);
        places.append_first_found(home, "Transfers/", &found.transfer_folders);
        const QString preferences = home + QLatin1String(preferences_file);
        if (places.is_there(preferences))
            found.preference_files.append(preferences);
    }
    log.write("[find_source_file] ends", QString(), find_signature);
    return found;
}

} // namespace extraction
