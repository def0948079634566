#include "host/extract_command.h"

#include "host/options/command_line.h"
#include "host/options/extract_options.h"
#include "host/driving/extraction_run.h"
#include "host/driving/interrupt.h"
#include "host/driving/plugin_library.h"
#include "host/findings/result_draft.h"
#include "host/findings/result_place.h"
#include "host/findings/run_failures.h"
#include "host/findings/run_summary.h"
#include "evidence/files/evidence_file.h"
#include "evidence/files/file_names.h"
#include "evidence/folders/folder_listing.h"
#include "evidence/folders/source_boundary.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

#include <fcntl.h>

namespace host {

namespace {

using source_info = struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info;

// Absolute, ending in "/", without doubled "/" and the like, because the paths in rows are cut by
// this text. "link/.." stays: it may lead elsewhere than its text says.
QString source_root(const QString &typed)
{
    const QString absolute = QDir::current().absoluteFilePath(typed);
    QString root = QDir::cleanPath(absolute);
    const QString canonical = QFileInfo(absolute).canonicalFilePath();
    if (QFileInfo(root).canonicalFilePath() != canonical)
        root = canonical;
    return root.endsWith(QLatin1Char('/')) ? root : root + QLatin1Char('/');
}

std::optional<failure> check_source(const QString &typed)
{
    const QFileInfo source(typed);
    const auto refused = [&typed](const char *problem) {
        return failure{exit_status::source_unusable,
                       QStringLiteral("the source %1 %2; give the folder that holds Users/ as "
                                      "SOURCE.")
                           .arg(typed, QLatin1String(problem))};
    };
    if (!source.exists())
        return refused("does not exist");
    if (!source.isDir())
        return refused("is not a folder");
    if (!source.isReadable() || !source.isExecutable())
        return refused("cannot be read");
    return std::nullopt;
}

// A home that is a link counts when it leads to a folder of the source. An absolute link is
// followed from the source's root, as the examined system did. A home outside the source is not
// evidence.
bool is_home(const QString &name, const QString &root, const evidence::source_boundary &boundary)
{
    if (name == QLatin1String("Shared") || name.startsWith(QLatin1Char('.')))
        return false;
    const evidence::resolved_path place = boundary.hold(root + QStringLiteral("Users/") + name);
    return place.where == evidence::reach::inside && place.file->is_folder();
}

// Does not use QDir, which would change the folder's access time. Returns nothing when `folder`
// leads out of the source.
QStringList names_in(const QString &folder, const QString &root)
{
    const evidence::resolved_path place = evidence::source_boundary(root).resolve(folder);
    if (place.where != evidence::reach::inside)
        return {};
    evidence::folder_listing listing;
    if (!listing.open(AT_FDCWD, evidence::encoded_name(place.path)))
        return {};
    QStringList names;
    while (const dirent *entry = listing.next()) {
        const QString name = evidence::decoded_name(entry->d_name);
        if (evidence::encoded_name(name) == entry->d_name)
            names.append(name);
        else
            warn(QStringLiteral("%1/%2 is not read: its name is not UTF-8.").arg(folder, name));
    }
    return names;
}

// Sorted by name, so that two runs over one source give the same rows in the same order.
QList<account> accounts_on_source(const QString &root)
{
    const QString users = root + QStringLiteral("Users");
    const evidence::source_boundary boundary(root);
    QStringList names;
    for (const QString &name : names_in(users, root)) {
        if (is_home(name, root, boundary))
            names.append(name);
    }
    std::sort(names.begin(), names.end());
    QList<account> accounts;
    for (const QString &name : qAsConst(names))
        accounts.append({name, QString()});
    return accounts;
}

std::optional<failure> find_accounts(const QString &root, source_info &source)
{
    const evidence::resolved_path place =
        evidence::source_boundary(root).resolve(root + QStringLiteral("Users"));
    const QFileInfo users(place.path);
    if (users.isDir() && (!users.isReadable() || !users.isExecutable())) {
        return failure{exit_status::source_unusable,
                       QStringLiteral("the folder %1 cannot be read; run with the right to read "
                                      "it, or name the accounts with --account.")
                           .arg(users.filePath())};
    }
    source.system_account_QList = accounts_on_source(root);
    return std::nullopt;
}

source_info describe_source(const extract_options &options)
{
    source_info source;
    source.fs_extraction_source_path = source_root(options.source);
    source.source_type_internal = options.source_type;
    source.os_scheme_display = options.os_display;
    source.os_scheme_internal = options.scheme;
    source.system_account_QList = options.accounts;
    return source;
}

// A note, no error: a system may have no accounts. Mostly it is the wrong folder.
void warn_without_accounts(const source_info &source)
{
    if (!source.system_account_QList.isEmpty() ||
        source.os_scheme_internal != QLatin1String("macOS"))
        return;
    warn(QStringLiteral("no account under %1Users, so there is nothing to extract; SOURCE is the "
                        "folder that holds Users/.")
             .arg(source.fs_extraction_source_path));
}

exit_status finish(const result_place &place, const run_result &result,
                   const run_failures &failures, bool json)
{
    for (const QString &message : failures.first)
        warn(message);
    if (failures.count > failures.first.size())
        warn(QStringLiteral("and %1 more, see --debug-log.")
                 .arg(failures.count - failures.first.size()));
    const table_counts counts = count_tables(place.database);
    print(json ? json_summary(place.database, result, counts)
               : text_summary(place.database, result, counts, failures.count));
    if (!counts.problem.isEmpty()) {
        return report({exit_status::result_unusable,
                       QStringLiteral("the result database %1 cannot be read (%2); run again with "
                                      "--debug-terminal to see why.")
                           .arg(place.database, counts.problem)});
    }
    if (result.cancelled)
        return exit_status::cancelled;
    return failures.count > 0 ? exit_status::incomplete : exit_status::done;
}

} // namespace

exit_status run_extract(const QStringList &arguments)
{
    extract_options options;
    if (const auto ended = read_extract_options(arguments, options))
        return *ended;
    if (const auto problem = check_source(options.source))
        return report(*problem);

    source_info source = describe_source(options);
    if (options.accounts.isEmpty()) {
        if (const auto problem = find_accounts(source.fs_extraction_source_path, source))
            return report(*problem);
    }
    interrupt_watcher interrupts;
    const loaded_plugin plugin = load_plugin(options.plugin_file);
    if (plugin.problem)
        return report(*plugin.problem);

    // Nothing is created before these checks.
    const result_place place =
        place_of_results(options.result_directory, plugin.object->pub_get_artifact_name());
    auto problem =
        check_apart_from_source(place, options.debug_log, source.fs_extraction_source_path);
    if (!problem)
        problem = check_writable(place, options.debug_log);
    if (problem)
        return report(*problem);
    warn_without_accounts(source);
    result_draft draft(place);
    if (const auto refused = draft.begin(options.append))
        return report(*refused);
    const QString log = options.debug_log.isEmpty() ? draft.log() : options.debug_log;
    const qint64 logged_before = QFileInfo(log).size();
    const run_result result =
        run_extraction(*plugin.object, options, source, draft.directory(), draft.log(), interrupts);
    const run_failures failures = failures_in_log(log, logged_before, options.encipher_log);
    if (const auto refused = draft.finish(result.cancelled))
        return report(*refused);
    return finish(place, result, failures, options.json);
}

} // namespace host
