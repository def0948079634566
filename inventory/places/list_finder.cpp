#include "inventory/places/list_finder.h"

#include "evidence/access/source_open.h"
#include "evidence/files/file_names.h"

#include <QPair>
#include <QSet>

#include <algorithm>
#include <tuple>

#include <fcntl.h>

namespace inventory {

namespace {

using evidence::folder_walk;
using evidence::reach;

constexpr char leads_outside[] = "it is a link that leads out of the source";

void skip(const QString &reason, found_list *list)
{
    list->status = list_status::skipped;
    list->reason = reason;
}

void fail(const QString &reason, found_list *list)
{
    list->status = list_status::failed;
    list->reason = reason;
}

bool comes_before(const found_list &left, const found_list &right)
{
    return std::tie(left.user, left.path) < std::tie(right.user, right.path);
}

} // namespace

list_finder::list_finder(const QString &root, const QString &shown_root, const QStringList &tabs,
                         const run::cancellation &cancelled)
    : root_(root)
    , shown_root_(shown_root)
    , tabs_(tabs)
    , cancelled_(cancelled)
    , boundary_(root, cancelled)
{
}

found_on_source list_finder::find(const std::vector<searched_place> &places)
{
    found_ = {};
    QSet<QPair<QString, int>> in_use;
    for (const searched_place &place : places) {
        if (cancelled_.is_requested())
            break;
        const QPair<QString, int> key(place.user, int(place.kind));
        if (search(place, !in_use.contains(key)))
            in_use.insert(key);
    }
    std::stable_sort(found_.lists.begin(), found_.lists.end(), comes_before);
    return std::move(found_);
}

QString list_finder::on_source(const QString &path) const
{
    return path.startsWith(root_) ? shown_root_ + path.mid(root_.size()) : path;
}

QString list_finder::why_not_in_tables(const searched_place &place, bool is_in_use) const
{
    if (!tabs_.contains(tab_of(place.kind)))
        return QStringLiteral("its tab was not asked for");
    if (!is_in_use)
        return QStringLiteral("the older folder exists, rows come from there");
    return {};
}

// What the link says that leads out of the source on the way to `path`. Its folder lies inside, and
// nothing beyond it is looked at.
QString list_finder::target_outside(const QString &path) const
{
    QString inside = root_;
    const QStringList names = path.mid(root_.size()).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString &name : names) {
        if (boundary_.resolve(inside + name).where == reach::outside) {
            const evidence::descriptor folder = evidence::hold_folder(
                AT_FDCWD, evidence::encoded_name(boundary_.resolve(inside).path).constData());
            return evidence::decoded_name(
                evidence::read_link(folder.get(), evidence::encoded_name(name).constData()));
        }
        inside += name + QLatin1Char('/');
    }
    return {};
}

bool list_finder::search(const searched_place &place, bool is_in_use)
{
    const evidence::resolved_path real = boundary_.hold(place.path);
    switch (real.where) {
    case reach::inside:
        break;
    case reach::missing:
        return false;
    case reach::outside:
        note(place.user, place.shown, QStringLiteral("a link on the way leads out of the source"),
             true, target_outside(place.path));
        return false;
    case reach::denied:
        note(place.user, on_source(real.path), QStringLiteral("this folder may not be read"), true);
        return false;
    case reach::ambiguous:
        note(place.user, place.shown, QStringLiteral("several names differ in capitals only"),
             true);
        return false;
    case reach::costly:
        note(place.user, place.shown, QStringLiteral("the way is too long to be followed"), true);
        return false;
    }
    found_.places.push_back(place);
    const QString why_skipped = why_not_in_tables(place, is_in_use);
    if (place.suffix.isEmpty())
        take_single_file(place, real, why_skipped);
    else if (real.file->is_folder())
        walk_folder(place, real.path, why_skipped);
    else
        note(place.user, place.shown, QStringLiteral("this is no folder"), true);
    return true;
}

void list_finder::take_single_file(const searched_place &place, const evidence::resolved_path &real,
                                   const QString &why_skipped)
{
    found_list list;
    list.user = place.user;
    list.kind = place.kind;
    list.place = place.name;
    list.path = place.shown;
    list.real_path = evidence::encoded_name(real.path);
    if (!why_skipped.isEmpty())
        skip(why_skipped, &list);
    found_.lists.push_back(list);
}

void list_finder::walk_folder(const searched_place &place, const QString &real,
                              const QString &why_skipped)
{
    folder_walk walk(place.shown, real, {}, evidence::walk_extent::everything);
    while (!cancelled_.is_requested() && walk.next())
        take_entry(walk, place, why_skipped);
    const QStringList failed = walk.take_failed();
    for (const QString &path : failed)
        note(place.user, path, QStringLiteral("this folder could not be read whole"), true);
}

void list_finder::take_entry(const folder_walk &walk, const searched_place &place,
                             const QString &why_skipped)
{
    const bool has_suffix = walk.name().endsWith(place.suffix);
    const bool is_folder = walk.kind() == folder_walk::entry_kind::folder;
    if (!has_suffix && !walk.name().toLower().endsWith(place.suffix)) {
        if (!is_folder)
            note(place.user, walk.path(), QStringLiteral("another file in a folder of lists"),
                 false);
        return;
    }
    found_list list;
    list.user = place.user;
    list.kind = place.kind;
    list.place = place.name;
    list.path = walk.path();
    if (!walk.path_is_text())
        fail(QStringLiteral("its name is not UTF-8"), &list);
    else if (is_folder)
        fail(QStringLiteral("it is a folder"), &list);
    else if (walk.kind() == folder_walk::entry_kind::link)
        take_link(walk, &list);
    else
        list.real_path = walk.encoded_real_path();
    list.is_listed_file = walk.kind() == folder_walk::entry_kind::file;
    if (walk.kind() == folder_walk::entry_kind::special)
        skip(QStringLiteral("it is neither a file nor a folder"), &list);
    else if (walk.is_hidden())
        skip(QStringLiteral("it is hidden: a name in its path begins with a point"), &list);
    else if (!has_suffix)
        skip(QStringLiteral("its name ends in other capitals than \"%1\"")
                 .arg(QLatin1String(place.suffix)),
             &list);
    else if (!why_skipped.isEmpty())
        skip(why_skipped, &list);
    found_.lists.push_back(list);
}

void list_finder::take_link(const folder_walk &walk, found_list *list)
{
    const QString path = walk.real_path();
    const evidence::resolved_path real = boundary_.resolve(path);
    if (real.where == reach::inside) {
        list->real_path = evidence::encoded_name(real.path);
        return;
    }
    const QString target = evidence::decoded_name(
        evidence::read_link(walk.folder_descriptor(), walk.name().constData()));
    if (real.where == reach::outside) {
        skip(QLatin1String(leads_outside), list);
        note(list->user, list->path, QStringLiteral("a link that leads out of the source"), false,
             target);
    } else if (real.where == reach::denied) {
        fail(QStringLiteral("it is a link to a folder that may not be read"), list);
    } else {
        skip(QStringLiteral("it is a link that leads nowhere"), list);
        note(list->user, list->path, QStringLiteral("a link that leads nowhere"), false, target);
    }
}

void list_finder::note(const QString &user, const QString &path, const QString &text,
                       bool is_failure, const QString &target)
{
    found_.notes.push_back({user, path, text, target, is_failure});
}

} // namespace inventory
