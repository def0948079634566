#include "inventory/layouts/source_layout.h"

#include "evidence/files/file_names.h"
#include "evidence/folders/folder_listing.h"
#include "evidence/folders/source_boundary.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <optional>

#include <fcntl.h>

namespace inventory {

namespace {

using evidence::reach;

constexpr char volume_layout[] = "volume";
constexpr char system_layout[] = "system-volume";
constexpr char users_layout[] = "users-folder";
constexpr char home_layout[] = "home";
constexpr char client_layout[] = "client-folder";
constexpr char file_layout[] = "list-file";
constexpr char backup_layout[] = "backup";
constexpr char collection_layout[] = "collection";

constexpr int deepest_users_folder = 5;    // of a collection
constexpr int most_folders_tried = 100000; // of a collection

// Who a home without a name belongs to.
constexpr char unknown_user[] = "unknown";

// Looks into one folder and what lies below it, without following a link out of it.
class examined_folder
{
public:
    examined_folder(const QString &path, const run::cancellation &cancelled)
        : root_(path.endsWith(QLatin1Char('/')) ? path : path + QLatin1Char('/'))
        , cancelled_(cancelled)
        // NOLINTNEXTLINE(clang-analyzer-optin.cplusplus.UninitializedObject): made elsewhere
        , boundary_(root_, cancelled)
    {
    }

    [[nodiscard]] const QString &root() const { return root_; }
    [[nodiscard]] bool is_cancelled() const { return cancelled_.is_requested(); }

    // `below`: relative to the root.
    [[nodiscard]] bool is_folder(const QString &below) const
    {
        const evidence::resolved_path place = boundary_.hold(root_ + below);
        return place.where == reach::inside && place.file->is_folder();
    }

    [[nodiscard]] bool leads_outside(const QString &below) const
    {
        return boundary_.resolve(root_ + below).where == reach::outside;
    }

    // There, or nobody can tell.
    [[nodiscard]] bool may_be_there(const QString &below) const
    {
        const reach where = boundary_.resolve(root_ + below).where;
        return where == reach::inside || where == reach::denied;
    }

    // In alphabetical order; names that are no text go to `odd`, as far as they can be shown.
    [[nodiscard]] QStringList names_in(const QString &below, QStringList *odd = nullptr) const
    {
        QStringList names;
        const evidence::resolved_path place = boundary_.resolve(root_ + below);
        evidence::folder_listing folder;
        if (place.where != reach::inside ||
            !folder.open(AT_FDCWD, evidence::encoded_name(place.path).constData()))
            return names;
        while (const dirent *const entry = folder.next()) {
            const QString name = evidence::decoded_name(entry->d_name);
            if (evidence::encoded_name(name) == entry->d_name)
                names.append(name);
            else if (odd != nullptr)
                odd->append(name);
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    [[nodiscard]] QStringList folders_in(const QString &below) const
    {
        QStringList folders;
        for (const QString &name : names_in(below)) {
            if (!name.startsWith(QLatin1Char('.')) && is_folder(below + name))
                folders.append(name);
        }
        return folders;
    }

private:
    QString root_;
    run::cancellation cancelled_;
    evidence::source_boundary boundary_;
};

QString with_slash(const QString &below)
{
    return below.isEmpty() ? below : below + QLatin1Char('/');
}

// Whether a home holds something of the client. A home that may not be searched may.
bool has_traces(const examined_folder &folder, const QString &home)
{
    for (const client_place &place : client_places()) {
        if (folder.may_be_there(home + QLatin1String(place.path)))
            return true;
    }
    return false;
}

QStringList homes_in(const examined_folder &folder, const QString &users)
{
    QStringList homes = folder.folders_in(users);
    homes.removeAll(QStringLiteral("Shared"));
    return homes;
}

bool any_has_traces(const examined_folder &folder, const QString &users)
{
    for (const QString &home : homes_in(folder, users)) {
        if (has_traces(folder, users + home + QLatin1Char('/')))
            return true;
    }
    return false;
}

void add_home(const QString &user, const QString &path, recognised_source *source)
{
    const searched_home home = {user, path, QStringLiteral("/Users/%1/").arg(user)};
    source->homes.push_back(home);
    const std::vector<searched_place> places = places_of(home);
    source->places.insert(source->places.end(), places.begin(), places.end());
}

// The volume at `below`; empty for the folder itself.
recognised_source volume_at(const examined_folder &folder, const QString &below, const char *layout)
{
    recognised_source source;
    source.layout = QLatin1String(layout);
    source.root = folder.root() + with_slash(below);
    source.path = source.root.chopped(1);
    source.shown_root = QStringLiteral("/");
    source.is_volume = true;
    const QString users = with_slash(below) + QStringLiteral("Users/");
    for (const QString &name : homes_in(folder, users))
        add_home(name, folder.root() + users + name + QLatin1Char('/'), &source);
    const QStringList names = folder.names_in(users, &source.unreadable_homes);
    for (const QString &name : names) {
        if (folder.leads_outside(users + name))
            source.outside_homes.append(name);
    }
    return source;
}

recognised_source part_of(const examined_folder &folder, const char *layout)
{
    recognised_source source;
    source.layout = QLatin1String(layout);
    source.root = folder.root();
    source.path = folder.root().chopped(1);
    source.shown_root = folder.root();
    return source;
}

using sources = std::vector<recognised_source>;

sources as_volume(const examined_folder &folder)
{
    if (!folder.is_folder(QStringLiteral("Users")))
        return {};
    return {volume_at(folder, {}, volume_layout)};
}

sources as_system_volume(const examined_folder &folder)
{
    const QString data = QStringLiteral("System/Volumes/Data");
    if (!folder.is_folder(data + QStringLiteral("/Users")))
        return {};
    return {volume_at(folder, data, system_layout)};
}

sources as_users_folder(const examined_folder &folder)
{
    recognised_source source = part_of(folder, users_layout);
    for (const QString &name : homes_in(folder, {})) {
        if (has_traces(folder, name + QLatin1Char('/')))
            add_home(name, folder.root() + name + QLatin1Char('/'), &source);
    }
    return source.homes.empty() ? sources() : sources{source};
}

QString name_of(const examined_folder &folder)
{
    const QString name = folder.root().chopped(1).section(QLatin1Char('/'), -1);
    return name.isEmpty() ? QLatin1String(unknown_user) : name;
}

sources as_home(const examined_folder &folder)
{
    if (!has_traces(folder, {}))
        return {};
    recognised_source source = part_of(folder, home_layout);
    add_home(name_of(folder), folder.root(), &source);
    return {source};
}

bool holds_lists(const examined_folder &folder, const QString &below, const QByteArray &suffix)
{
    const QStringList names = folder.names_in(below);
    return std::any_of(names.begin(), names.end(),
                       [&](const QString &name) { return name.endsWith(QLatin1String(suffix)); });
}

// A folder of the client, wherever it lies, or a folder in which its lists lie.
sources as_client_folder(const examined_folder &folder)
{
    recognised_source source = part_of(folder, client_layout);
    const QString user = QLatin1String(unknown_user);
    const QString shown = QStringLiteral("/Users/%1/").arg(user);
    source.homes.push_back({user, folder.root(), shown});
    for (const client_place &place : client_places()) {
        const QString path = QLatin1String(place.path);
        const bool is_older = path.startsWith(QLatin1String("Library/Application Support/"));
        if (*place.suffix == '\0' || !is_older)
            continue;
        const QString name = path.section(QLatin1Char('/'), -2, -2) + QLatin1Char('/');
        const bool is_there = folder.is_folder(name);
        // Lists that lie in the folder itself; those of history and bookmarks look alike.
        const bool is_loose =
            !is_there && place.kind != list_kind::history && holds_lists(folder, {}, place.suffix);
        if (is_there || is_loose)
            source.places.push_back({user, place.kind, QLatin1String(place.name),
                                     folder.root() + (is_there ? name : QString()), shown + path,
                                     QByteArray(place.suffix)});
    }
    const QString preferences = QStringLiteral("ch.sudo.cyberduck.plist");
    if (folder.may_be_there(preferences))
        source.places.push_back({user, list_kind::preferences, QStringLiteral("preferences"),
                                 folder.root() + preferences,
                                 shown + QStringLiteral("Library/Preferences/") + preferences,
                                 QByteArray()});
    return source.places.empty() ? sources() : sources{source};
}

bool is_dated(const QString &name)
{
    static const QRegularExpression form(
        QStringLiteral("^\\d{4}-\\d{2}-\\d{2}-\\d{6}(\\.(backup|previous|interrupted))?$"));
    return form.match(name).hasMatch();
}

void add_snapshots(const examined_folder &folder, const QString &below, sources *found)
{
    for (const QString &date : folder.folders_in(below)) {
        if (!is_dated(date))
            continue;
        const QString snapshot = below + date + QLatin1Char('/');
        for (const QString &volume : folder.folders_in(snapshot)) {
            const QString users = snapshot + volume + QStringLiteral("/Users/");
            if (any_has_traces(folder, users))
                found->push_back(volume_at(folder, snapshot + volume, backup_layout));
        }
    }
}

// The folders of snapshots lie in the folder itself, or below a folder for each machine.
sources as_backup(const examined_folder &folder)
{
    sources found;
    add_snapshots(folder, {}, &found);
    QStringList parents = {QString(), QStringLiteral("Backups.backupdb/")};
    for (const QString &parent : qAsConst(parents)) {
        for (const QString &machine : folder.folders_in(parent)) {
            if (!is_dated(machine) &&
                (!parent.isEmpty() || machine != QLatin1String("Backups.backupdb")))
                add_snapshots(folder, parent + machine + QLatin1Char('/'), &found);
        }
    }
    const auto date_of = [](const recognised_source &source) {
        return source.path.section(QLatin1Char('/'), -2, -2);
    };
    std::stable_sort(found.begin(), found.end(),
                     [&](const recognised_source &left, const recognised_source &right) {
                         return date_of(left) < date_of(right);
                     });
    return found;
}

// Folders named Users below it that hold homes with something of the client.
sources as_collection(const examined_folder &folder)
{
    sources found;
    std::vector<std::pair<QString, int>> pending = {{QString(), 0}};
    int tried = 0;
    while (!pending.empty() && tried < most_folders_tried && !folder.is_cancelled()) {
        const auto [below, level] = pending.back();
        pending.pop_back();
        ++tried;
        const QStringList names = folder.folders_in(below);
        if (level > 0 && names.contains(QStringLiteral("Users")) &&
            any_has_traces(folder, below + QStringLiteral("Users/"))) {
            found.push_back(volume_at(folder, below.chopped(1), collection_layout));
            continue;
        }
        if (level + 1 >= deepest_users_folder)
            continue;
        for (auto name = names.rbegin(); name != names.rend(); ++name)
            pending.emplace_back(below + *name + QLatin1Char('/'), level + 1);
    }
    return found;
}

bool has_any_trace(const recognised_source &source, const examined_folder &folder)
{
    return std::any_of(source.homes.begin(), source.homes.end(), [&](const searched_home &home) {
        return has_traces(folder, home.path.mid(folder.root().size()));
    });
}

const struct known_layout
{
    const char *name;
    sources (*recognise)(const examined_folder &folder);
    bool needs_traces; // or else another layout may fit better
    const char *tried; // for people
} known_layouts[] = {
    {volume_layout, as_volume, true, "Users/NAME/Library/…, as on a volume"},
    {system_layout, as_system_volume, true, "System/Volumes/Data/Users/NAME/Library/…"},
    {backup_layout, as_backup, false,
     "DATE/VOLUME/Users, Backups.backupdb/MACHINE/DATE/VOLUME/Users"},
    {home_layout, as_home, false,
     "Library/Application Support/Cyberduck and the like, as in a home"},
    {client_layout, as_client_folder, false, "Bookmarks, History, Transfers, or lists themselves"},
    {users_layout, as_users_folder, false, "NAME/Library/…, as in a Users folder"},
    {collection_layout, as_collection, false, "a Users folder, at most five levels down"},
};

recognition recognise_file(const QString &path)
{
    recognition result;
    const int name_start = path.lastIndexOf(QLatin1Char('/')) + 1;
    const QString name = path.mid(name_start);
    for (const client_place &place : client_places()) {
        const QLatin1String ending(*place.suffix == '\0' ? "ch.sudo.cyberduck.plist"
                                                         : place.suffix);
        if (!name.endsWith(ending))
            continue;
        recognised_source source;
        source.path = path;
        source.layout = QLatin1String(file_layout);
        source.root = path.left(name_start);
        source.shown_root = source.root;
        const QString user = QLatin1String(unknown_user);
        const QString shown = QStringLiteral("/Users/%1/").arg(user);
        source.homes.push_back({user, source.root, shown});
        const QString place_path = QLatin1String(place.path);
        source.places.push_back(
            {user, place.kind, QLatin1String(place.name), path,
             shown + place_path.left(place_path.lastIndexOf(QLatin1Char('/')) + 1) + name,
             QByteArray()});
        result.sources.push_back(source);
        break;
    }
    return result;
}

} // namespace

QStringList layout_names()
{
    QStringList names;
    for (const known_layout &layout : known_layouts)
        names.append(QLatin1String(layout.name));
    return names << QLatin1String(file_layout);
}

bool add_named_home(const QString &user, recognised_source *volume)
{
    const QString path = volume->root + QStringLiteral("Users/") + user;
    const evidence::resolved_path place = evidence::source_boundary(volume->root).hold(path);
    if (place.where != reach::inside || !place.file->is_folder())
        return false;
    add_home(user, path + QLatin1Char('/'), volume);
    return true;
}

recognition recognise(const QString &path, const QString &layout,
                      const run::cancellation &cancelled)
{
    // A link to it is the host's own.
    if (!QFileInfo(path).isDir())
        return recognise_file(path);
    const examined_folder folder(path, cancelled);
    recognition result;
    sources second_best;
    for (const known_layout &known : known_layouts) {
        if (!layout.isEmpty() && layout != QLatin1String(known.name))
            continue;
        result.tried.append(QString::fromUtf8(known.tried));
        sources found = known.recognise(folder);
        if (found.empty())
            continue;
        if (layout.isEmpty() && known.needs_traces && !has_any_trace(found.front(), folder)) {
            if (second_best.empty())
                second_best = std::move(found);
            continue;
        }
        result.sources = std::move(found);
        return result;
    }
    result.sources = std::move(second_best);
    return result;
}

} // namespace inventory
