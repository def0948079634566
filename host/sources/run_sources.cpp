#include "host/sources/run_sources.h"

#include "host/options/command_line.h"
#include "inventory/layouts/image_kind.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace host {

namespace {

using inventory::recognised_source;
using inventory::searched_home;

failure unusable(const QString &message)
{
    return {exit_status::source_unusable, message};
}

// Absolute, without doubled "/" and the like, because the paths in rows are cut by this text.
// "link/.." stays: it may lead elsewhere than its text says.
QString absolute_path(const QString &typed)
{
    const QString absolute = QDir::current().absoluteFilePath(typed);
    const QString clean = QDir::cleanPath(absolute);
    const QString canonical = QFileInfo(absolute).canonicalFilePath();
    return QFileInfo(clean).canonicalFilePath() == canonical ? clean : canonical;
}

std::optional<failure> check_source(const QString &typed, QStringList *details)
{
    const QFileInfo source(typed);
    if (!source.exists())
        return unusable(QStringLiteral("the source %1 does not exist.").arg(typed));
    if (!source.isReadable() || (source.isDir() && !source.isExecutable()))
        return unusable(QStringLiteral("the source %1 cannot be read; run with the right to read "
                                       "it.")
                            .arg(typed));
    if (source.isDir())
        return std::nullopt;
    const inventory::image_kind image = inventory::kind_of_image(typed);
    if (image.name.isNull())
        return std::nullopt;
    *details += QStringLiteral("make its content reachable, read-only, and give that folder:");
    *details += image.commands.split(QLatin1Char('\n'));
    return unusable(
        QStringLiteral("the source %1 is %2, which is not read itself.").arg(typed, image.name));
}

QStringList names_of(const std::vector<searched_home> &homes)
{
    QStringList names;
    for (const searched_home &home : homes)
        names.append(home.user);
    return names;
}

// A copied home may have another name than its user.
void rename_only_home(const QString &user, recognised_source *source)
{
    const QString before = source->homes.front().shown;
    const QString after = QStringLiteral("/Users/%1/").arg(user);
    source->homes.front().user = user;
    source->homes.front().shown = after;
    for (inventory::searched_place &place : source->places) {
        place.user = user;
        place.shown = after + place.shown.mid(before.size());
    }
}

void keep_users(const QStringList &users, recognised_source *source)
{
    const auto is_other_home = [&](const searched_home &home) {
        return !users.contains(home.user);
    };
    const auto is_other_place = [&](const inventory::searched_place &place) {
        return !users.contains(place.user);
    };
    auto &homes = source->homes;
    auto &places = source->places;
    homes.erase(std::remove_if(homes.begin(), homes.end(), is_other_home), homes.end());
    places.erase(std::remove_if(places.begin(), places.end(), is_other_place), places.end());
}

void take_accounts(const QList<account> &wanted, run_source *source)
{
    recognised_source &layout = source->layout;
    if (!layout.is_volume && layout.homes.size() == 1 && wanted.size() == 1)
        rename_only_home(wanted.front().system_user, &layout);
    QStringList users;
    for (const account &one : wanted) {
        users.append(one.system_user);
        if (layout.is_volume && !names_of(layout.homes).contains(one.system_user))
            inventory::add_named_home(one.system_user, &layout);
        if (names_of(layout.homes).contains(one.system_user))
            source->accounts.append(one);
    }
    if (!wanted.isEmpty())
        return keep_users(users, &layout);
    for (const searched_home &home : layout.homes)
        source->accounts.append({home.user, QString()});
}

std::optional<failure> check_accounts(const QList<account> &wanted,
                                      const std::vector<run_source> &sources,
                                      const QStringList &existing)
{
    for (const account &one : wanted) {
        const bool is_there =
            std::any_of(sources.begin(), sources.end(), [&](const run_source &source) {
                return names_of(source.layout.homes).contains(one.system_user);
            });
        if (is_there)
            continue;
        const QString there = existing.isEmpty() ? QStringLiteral("there is none")
                                                 : QStringLiteral("there are: ") +
                                                       existing.join(QStringLiteral(", "));
        return unusable(
            QStringLiteral("no account %1 on the source; %2.").arg(one.system_user, there));
    }
    return std::nullopt;
}

// Without the list of homes nobody could tell what is missing.
std::optional<failure> check_homes(const recognised_source &layout, const QList<account> &wanted)
{
    for (const QString &name : layout.unreadable_homes)
        warn(QStringLiteral("%1Users/%2 is not read: its name is not UTF-8.")
                 .arg(layout.root, name));
    const QFileInfo users(layout.root + QStringLiteral("Users"));
    const bool is_listable = !users.isDir() || (users.isReadable() && users.isExecutable());
    if (!layout.is_volume || !wanted.isEmpty() || is_listable)
        return std::nullopt;
    return unusable(
        QStringLiteral("the folder %1 cannot be read; run with the right to read it, or "
                       "name the accounts with --account.")
            .arg(users.filePath()));
}

QStringList indented(const QStringList &lines)
{
    QStringList all;
    for (const QString &line : lines)
        all.append(QStringLiteral("  ") + line);
    return all;
}

// A source of another system than macOS goes to the plug-in as it is.
run_source as_it_is(const QString &path, const QList<account> &accounts)
{
    run_source source;
    inventory::recognition found = inventory::recognise(path, QStringLiteral("volume"), {});
    if (!found.sources.empty() && accounts.isEmpty()) {
        source.layout = std::move(found.sources.front());
        take_accounts({}, &source);
        return source;
    }
    source.layout.path = path;
    source.layout.layout = QStringLiteral("as it is");
    source.layout.root = path.endsWith(QLatin1Char('/')) ? path : path + QLatin1Char('/');
    source.layout.shown_root = QStringLiteral("/");
    source.layout.is_volume = true;
    source.accounts = accounts;
    return source;
}

} // namespace

source_search find_sources(const extract_options &options, const run::cancellation &cancelled)
{
    source_search search;
    QStringList existing;
    for (const QString &typed : options.sources) {
        search.problem = check_source(typed, &search.details);
        if (search.problem)
            return search;
        const QString path = absolute_path(typed);
        if (options.scheme != QLatin1String("macOS")) {
            search.sources.push_back(as_it_is(path, options.accounts));
            continue;
        }
        inventory::recognition found = inventory::recognise(path, options.layout, cancelled);
        if (found.sources.empty() && found.tried.isEmpty()) {
            search.problem = unusable(
                QStringLiteral("the source %1 is a file, but no list of the client.").arg(typed));
            return search;
        }
        if (found.sources.empty()) {
            search.problem = unusable(
                QStringLiteral("nothing of the client was found at %1, and it is of no known "
                               "layout.")
                    .arg(typed));
            search.details += QStringLiteral("looked for:");
            search.details += indented(found.tried);
            return search;
        }
        for (recognised_source &layout : found.sources) {
            search.problem = check_homes(layout, options.accounts);
            if (search.problem)
                return search;
            run_source source;
            source.layout = std::move(layout);
            existing += names_of(source.layout.homes);
            take_accounts(options.accounts, &source);
            search.sources.push_back(std::move(source));
        }
    }
    existing.removeDuplicates();
    if (options.scheme == QLatin1String("macOS"))
        search.problem = check_accounts(options.accounts, search.sources, existing);
    return search;
}

void search_lists(const extract_options &options, const run::cancellation &cancelled,
                  std::vector<run_source> *sources)
{
    for (run_source &source : *sources) {
        inventory::list_finder finder(source.layout.root, source.layout.shown_root, options.tabs,
                                      cancelled);
        source.found = finder.find(source.layout.places);
        for (const QString &name : qAsConst(source.layout.outside_homes))
            source.found.notes.push_back(
                {name,
                 QStringLiteral("/Users/") + name,
                 QStringLiteral("this home is a link that leads out of the source"),
                 {},
                 true});
    }
}

std::optional<failure> check_anything_found(const std::vector<run_source> &sources,
                                            QStringList *details)
{
    for (const run_source &source : sources) {
        const auto &notes = source.found.notes;
        const bool may_hold_lists =
            std::any_of(notes.begin(), notes.end(),
                        [](const inventory::found_note &note) { return note.is_failure; });
        if (!source.found.places.empty() || may_hold_lists)
            return std::nullopt;
    }
    *details += QStringLiteral("looked for:");
    for (const run_source &source : sources) {
        for (const inventory::searched_place &place : source.layout.places)
            *details += QStringLiteral("  ") + place.path;
        if (source.layout.places.empty())
            *details +=
                QStringLiteral("  homes in ") + source.layout.root + QStringLiteral("Users");
    }
    return unusable(QStringLiteral("nothing of the client was found on the source."));
}

} // namespace host
