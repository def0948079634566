#include "extract_command.h"

#include "command_line.h"
#include "extract_options.h"
#include "extraction_run.h"
#include "interrupt.h"
#include "plugin_library.h"
#include "result_place.h"
#include "run_summary.h"
#include "support/evidence_file.h"
#include "support/file_names.h"
#include "support/source_boundary.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace host {

namespace {

using source_info = struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info;

// Absolute and ending in "/". Without doubled "/" and the like, since rows are shortened by this
// text; but "link/.." may lead elsewhere than its text says.
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

// A home that is a link counts when it leads to a folder of the source, an absolute link seen from
// the source's own root: the system that used it found its files there. One that leads out of the
// source is not evidence.
bool is_home(const QFileInfo &entry, const QString &root)
{
    if (entry.fileName() == QLatin1String("Shared") ||
        entry.fileName().startsWith(QLatin1Char('.')))
        return false;
    if (!entry.isSymLink())
        return entry.isDir();
    const support::resolved_path place =
        support::source_boundary(root).resolve(root + QStringLiteral("Users/") + entry.fileName());
    return place.where == support::reach::inside && QFileInfo(place.path).isDir();
}

// Not by QDir, which would change the folder's access time. Nothing when `folder` leads out of the
// source.
QStringList names_in(const QString &folder, const QString &root)
{
    const support::resolved_path place = support::source_boundary(root).resolve(folder);
    if (place.where != support::reach::inside)
        return {};
    const int descriptor = support::open_unchanged(AT_FDCWD, support::encoded_name(place.path),
                                                   O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    const auto close_listing = [](DIR *listing) { ::closedir(listing); };
    const std::unique_ptr<DIR, decltype(close_listing)> listing(
        descriptor < 0 ? nullptr : ::fdopendir(descriptor), close_listing);
    if (!listing && descriptor >= 0)
        ::close(descriptor);
    QStringList names;
    while (const dirent *entry = listing ? ::readdir(listing.get()) : nullptr) {
        const QString name = support::decoded_name(entry->d_name);
        if (support::encoded_name(name) == entry->d_name)
            names.append(name);
        else
            warn(QStringLiteral("%1/%2 is not read: its name is not UTF-8.").arg(folder, name));
    }
    return names;
}

// Sorted by name, so that two runs on one source give the same rows in the same order.
QList<account> accounts_on_source(const QString &root)
{
    const QString users = root + QStringLiteral("Users");
    QStringList names;
    for (const QString &name : names_in(users, root)) {
        if (is_home(QFileInfo(users + QLatin1Char('/') + name), root))
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
    const QFileInfo users(root + QStringLiteral("Users"));
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

// No error: a system without accounts may be examined. Mostly it is the wrong folder.
void warn_without_accounts(const source_info &source)
{
    if (!source.system_account_QList.isEmpty() ||
        source.os_scheme_internal != QLatin1String("macOS"))
        return;
    warn(QStringLiteral("no account under %1Users, so there is nothing to extract; SOURCE is the "
                        "folder that holds Users/.")
             .arg(source.fs_extraction_source_path));
}

exit_status finish(const result_place &place, const run_result &result, bool json)
{
    const table_counts counts = count_tables(place.database);
    print(json ? json_summary(place.database, result, counts)
               : text_summary(place.database, result, counts));
    if (!counts.problem.isEmpty()) {
        return report({exit_status::result_unusable,
                       QStringLiteral("the result database %1 cannot be read (%2); run again with "
                                      "--debug-terminal to see why.")
                           .arg(place.database, counts.problem)});
    }
    return result.cancelled ? exit_status::cancelled : exit_status::done;
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

    // Nothing is made anywhere before this is settled.
    const result_place place =
        place_of_results(options.result_directory, plugin.object->pub_get_artifact_name());
    auto problem =
        check_apart_from_source(place, options.debug_log, source.fs_extraction_source_path);
    if (!problem)
        problem = check_writable(place, options.debug_log);
    if (problem)
        return report(*problem);
    warn_without_accounts(source);
    const run_result result =
        run_extraction(*plugin.object, options, source, place.directory, interrupts);
    return finish(place, result, options.json);
}

} // namespace host
