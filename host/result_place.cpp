#include "result_place.h"

#include "support/file_names.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <filesystem>
#include <system_error>
#include <vector>

namespace host {

namespace {

namespace fs = std::filesystem;

// More links than any system follows; a circle of links ends here.
constexpr int most_links = 64;

void push_components(std::vector<fs::path> &pending, const fs::path &path)
{
    const std::vector<fs::path> components(path.begin(), path.end());
    pending.insert(pending.end(), components.rbegin(), components.rend());
}

// weakly_canonical() would take a dangling link for a plain missing name.
fs::path resolve(const QString &path)
{
    std::vector<fs::path> pending; // the next component is the last
    push_components(pending, fs::path(support::encoded_name(path).toStdString()));
    fs::path resolved = "/";
    int links = 0;
    while (!pending.empty()) {
        const fs::path component = pending.back();
        pending.pop_back();
        if (component.empty() || component == "." || component == "/")
            continue;
        if (component == "..") {
            resolved = resolved.parent_path();
            continue;
        }
        std::error_code error;
        const fs::path target = fs::read_symlink(resolved / component, error);
        if (error || ++links > most_links) {
            resolved /= component;
            continue;
        }
        if (target.is_absolute())
            resolved = "/";
        push_components(pending, target);
    }
    return resolved;
}

failure refused(const QString &message)
{
    return {exit_status::result_unusable, message};
}

// The check is by doing: permissions alone say nothing about read-only and full file systems.
bool can_create_in(const QString &folder)
{
    QTemporaryFile probe(folder + QStringLiteral("/.plugin_host_XXXXXX"));
    return probe.open() && probe.write("x") == 1 && probe.flush();
}

QString deepest_existing(QString folder)
{
    while (!QFileInfo::exists(folder) && !QFileInfo(folder).isSymLink()) {
        const QString parent = QFileInfo(QDir::cleanPath(folder)).path();
        if (parent == folder)
            break;
        folder = parent;
    }
    return folder;
}

// An existing file is opened without changing it; a missing one shall be made by the plug-in.
bool can_write_file(const QString &path)
{
    if (!QFileInfo::exists(path))
        return can_create_in(deepest_existing(QFileInfo(path).path()));
    if (QFileInfo(path).isDir())
        return false;
    if (!QFileInfo(path).isFile())
        return true; // a terminal or a pipe: opening one may wait for its reader
    return QFile(path).open(QIODevice::ReadWrite | QIODevice::ExistingOnly);
}

bool can_append_to(const QString &path)
{
    if (QFileInfo::exists(path) && !QFileInfo(path).isFile())
        return can_write_file(path);
    return QFile(path).open(QIODevice::Append);
}

} // namespace

result_place place_of_results(const QString &directory, const QString &artifact_name)
{
    const QString name = QString(artifact_name).replace(QLatin1Char(' '), QLatin1Char('_'));
    result_place place;
    place.directory = QDir::current().absoluteFilePath(directory);
    const QString separator =
        place.directory.endsWith(QLatin1Char('/')) ? QString() : QStringLiteral("/");
    place.plugin_folder =
        place.directory + separator + QStringLiteral("Artifacts_Result/") + name + QLatin1Char('/');
    place.temporary_folder = place.plugin_folder + QStringLiteral("tmp/");
    place.database = place.plugin_folder + name + QStringLiteral(".sqlite");
    return place;
}

bool is_inside(const QString &path, const QString &folder)
{
    const fs::path root = resolve(folder);
    for (fs::path level = resolve(path);; level = level.parent_path()) {
        // By identity, not by text: a file system may fold letters, or be mounted twice.
        std::error_code error;
        if (level == root || fs::equivalent(level, root, error))
            return true;
        if (level == level.parent_path())
            return false;
    }
}

std::optional<failure> check_apart_from_source(const result_place &place, const QString &debug_log,
                                               const QString &source)
{
    // The parts too: one of them may be a link that an earlier run or an adversary left.
    for (const QString &path :
         {place.directory, place.plugin_folder, place.temporary_folder, place.database}) {
        if (is_inside(path, source)) {
            return refused(QStringLiteral("the result directory's %1 is inside the source %2, "
                                          "which must not change; give a RESULT_DIR outside it.")
                               .arg(path, source));
        }
    }
    if (is_inside(source, place.plugin_folder)) {
        return refused(QStringLiteral("the source %1 is inside %2, where the plug-in removes "
                                      "files; give another RESULT_DIR.")
                           .arg(source, place.plugin_folder));
    }
    if (!debug_log.isEmpty() && is_inside(debug_log, source)) {
        return refused(QStringLiteral("the debug log %1 is inside the source %2, which must not "
                                      "change; give --debug-log a FILE outside it.")
                           .arg(debug_log, source));
    }
    return std::nullopt;
}

std::optional<failure> check_writable(const result_place &place, const QString &debug_log)
{
    const bool made = QDir().mkpath(place.directory);
    for (const QString &path : {place.directory + QStringLiteral("/probe"), place.database,
                                place.temporary_folder + QStringLiteral("/probe")}) {
        if (!made || !can_write_file(path)) {
            return refused(QStringLiteral("cannot write into the result directory %1; give a "
                                          "RESULT_DIR that can be written.")
                               .arg(place.directory));
        }
    }
    // By opening it: nothing else is to be made in its folder.
    if (!debug_log.isEmpty() && !can_append_to(debug_log)) {
        return refused(QStringLiteral("cannot write the debug log %1; give --debug-log a FILE in "
                                      "a folder that exists and can be written.")
                           .arg(debug_log));
    }
    return std::nullopt;
}

} // namespace host
