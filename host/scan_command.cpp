#include "host/scan_command.h"

#include "host/options/command_line.h"
#include "host/sources/run_sources.h"
#include "inventory/layouts/source_layout.h"
#include "inventory/source_inventory.h"
#include "log/visible_text.h"
#include "results/database/result_tables.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <map>

namespace host {

namespace {

constexpr help_text help = {
    "scan [options] SOURCE...",
    "  plugin_host scan /mnt/image\n\n"
    "Exit status: 0 something was found, 2 wrong usage, 3 source missing, unusable, or nothing\n"
    "found, 4 standard output cannot be written."};

// Of one place of one user.
struct place_counts
{
    QString path;
    qint64 to_read = 0;
    qint64 not_to_read = 0;
};

using counts_by_place = std::map<std::pair<QString, QString>, place_counts>; // user, kind and place

counts_by_place count_places(const run_source &source)
{
    counts_by_place all;
    const auto key = [](const QString &user, inventory::list_kind kind, const QString &place) {
        return std::make_pair(user, inventory::kind_name(kind) + QStringLiteral(", ") + place);
    };
    for (const inventory::searched_place &place : source.found.places)
        all[key(place.user, place.kind, place.name)].path = place.shown;
    for (const inventory::found_list &list : source.found.lists) {
        place_counts &counts = all[key(list.user, list.kind, list.place)];
        ++(list.status == inventory::list_status::read ? counts.to_read : counts.not_to_read);
    }
    return all;
}

QString source_text(const run_source &source)
{
    const inventory::source_facts facts = inventory::facts_of_source(source.layout.root);
    QString text = QStringLiteral("source:  %1\nlayout:  %2\n")
                       .arg(logging::visible_text(source.layout.path), source.layout.layout);
    if (!facts.os_version.isEmpty())
        text += QStringLiteral("macOS:   %1\n").arg(logging::visible_text(facts.os_version));
    if (!facts.volume_name.isEmpty())
        text += QStringLiteral("volume:  %1\n").arg(logging::visible_text(facts.volume_name));
    if (!source.layout.is_volume)
        text += QStringLiteral("         local copies are not part of it\n");
    QStringList users;
    for (const account &one : source.accounts)
        users.append(logging::visible_text(one.system_user));
    text += QStringLiteral("users:   %1\n").arg(users.join(QStringLiteral(", ")));
    for (const auto &[key, counts] : count_places(source)) {
        text += QStringLiteral("  %1: %2: %3 to read")
                    .arg(logging::visible_text(key.first), key.second)
                    .arg(counts.to_read);
        if (counts.not_to_read > 0)
            text += QStringLiteral(", %1 not").arg(counts.not_to_read);
        text += QStringLiteral("  (%1)\n").arg(logging::visible_text(counts.path));
    }
    for (const inventory::found_list &list : source.found.lists) {
        if (list.status != inventory::list_status::read)
            text += QStringLiteral("  not read: %1: %2\n")
                        .arg(logging::visible_text(list.path), list.reason);
    }
    for (const inventory::found_note &note : source.found.notes) {
        if (note.is_failure)
            text += QStringLiteral("  %1: %2\n").arg(logging::visible_text(note.path), note.text);
    }
    return text;
}

QJsonObject source_json(const run_source &source)
{
    const inventory::source_facts facts = inventory::facts_of_source(source.layout.root);
    QJsonArray users;
    for (const account &one : source.accounts)
        users.append(one.system_user);
    QJsonArray places;
    for (const auto &[key, counts] : count_places(source))
        places.append(QJsonObject{{"user", key.first},
                                  {"place", key.second},
                                  {"path", counts.path},
                                  {"to_read", counts.to_read},
                                  {"not_to_read", counts.not_to_read}});
    QJsonArray not_read;
    for (const inventory::found_list &list : source.found.lists) {
        if (list.status != inventory::list_status::read)
            not_read.append(QJsonObject{{"path", list.path}, {"reason", list.reason}});
    }
    QJsonArray notes;
    for (const inventory::found_note &note : source.found.notes)
        notes.append(
            QJsonObject{{"path", note.path}, {"text", note.text}, {"failure", note.is_failure}});
    return {{"path", source.layout.path},
            {"layout", source.layout.layout},
            {"root", source.layout.root},
            {"local_copies_collected", source.layout.is_volume},
            {"os_version", facts.os_version},
            {"volume_name", facts.volume_name},
            {"users", users},
            {"places", places},
            {"not_read", not_read},
            {"notes", notes}};
}

} // namespace

exit_status scan_sources(const extract_options &options)
{
    const run::cancellation never;
    source_search search = find_sources(options, never);
    if (!search.problem) {
        search_lists(options, never, &search.sources);
        search.problem = check_anything_found(search.sources, &search.details);
    }
    if (search.problem) {
        const exit_status status = report(*search.problem);
        for (const QString &line : qAsConst(search.details))
            report({status, line});
        return status;
    }
    QJsonArray all;
    for (const run_source &source : search.sources) {
        if (options.json)
            all.append(source_json(source));
        else
            print(source_text(source));
    }
    if (options.json)
        print(QString::fromUtf8(
            QJsonDocument(QJsonObject{{"schema_version", 1}, {"sources", all}}).toJson()));
    return exit_status::done;
}

exit_status run_scan(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.addOption({QStringLiteral("layout"),
                      QStringLiteral("What a SOURCE is, instead of the first that fits."),
                      QStringLiteral("NAME")});
    parser.addOption({QStringLiteral("json"), QStringLiteral("Print one JSON document.")});
    parser.addPositionalArgument(
        QStringLiteral("SOURCE"),
        QStringLiteral("What is to be examined. Nothing in it is changed."),
        QStringLiteral("SOURCE..."));
    if (const auto ended = parse(parser, arguments, help))
        return *ended;
    extract_options options;
    options.sources = parser.positionalArguments();
    options.layout = parser.value(QStringLiteral("layout"));
    options.json = parser.isSet(QStringLiteral("json"));
    options.scheme = QStringLiteral("macOS");
    for (const char *tab : results::tab_names)
        options.tabs.append(QLatin1String(tab));
    if (options.sources.isEmpty() || options.sources.contains(QString()))
        return report({exit_status::wrong_usage,
                       QStringLiteral("scan takes a SOURCE; try 'plugin_host scan --help'.")});
    if (!options.layout.isEmpty() && !inventory::layout_names().contains(options.layout))
        return report(
            {exit_status::wrong_usage,
             QStringLiteral("--layout takes %1, not '%2'.")
                 .arg(inventory::layout_names().join(QStringLiteral(", ")), options.layout)});
    if (is_lost_working_folder(options.sources))
        return report({exit_status::wrong_usage,
                       QStringLiteral("the working folder is gone; give absolute paths.")});
    return scan_sources(options);
}

} // namespace host
