#include "host/findings/result_place.h"

#include "evidence/files/file_names.h"
#include "evidence/folders/source_boundary.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <sys/stat.h>

#include <filesystem>
#include <system_error>

namespace host {

namespace {

namespace fs = std::filesystem;

// With everything that is a link followed, also where it leads to nothing yet.
fs::path resolve(const QString &path)
{
    const evidence::source_boundary machine(QStringLiteral("/"));
    const QString place = machine.place_of(QDir::cleanPath(path));
    // A circle of links leads nowhere: it stands for itself.
    return evidence::encoded_name(place.isNull() ? path : place).toStdString();
}

failure refused(const QString &message)
{
    return {exit_status::result_unusable, message};
}

// Tries it: permissions say nothing about read-only and full file systems.
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

// An existing file is opened without changing it. A missing one is left for the plug-in to make.
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

// Opening a pipe waits for its reader.
bool is_character_device(const QString &path)
{
    struct stat status = {};
    return ::stat(evidence::encoded_name(path).constData(), &status) == 0 &&
           S_ISCHR(status.st_mode);
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
    place.inventory = place.directory + separator + QStringLiteral("inventory.sqlite");
    place.run_account = place.directory + separator + QStringLiteral("run.json");
    place.view = place.directory + separator + QStringLiteral("view/");
    return place;
}

bool is_inside(const QString &path, const QString &folder)
{
    const fs::path root = resolve(folder);
    for (fs::path level = resolve(path);; level = level.parent_path()) {
        // Compares identities, not texts: a file system may fold letters, or be mounted twice.
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
    // Checks each part: one of them may be a link that an earlier run or an adversary left.
    for (const QString &path : {place.directory, place.plugin_folder, place.temporary_folder,
                                place.database, place.inventory, place.run_account, place.view}) {
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
    if (!debug_log.isEmpty() && is_inside(debug_log, place.database)) {
        return refused(QStringLiteral("the debug log %1 is the result database; give --debug-log "
                                      "another FILE.")
                           .arg(debug_log));
    }
    return std::nullopt;
}

std::optional<failure> check_no_result(const result_place &place)
{
    for (const QString &path : {place.database, place.inventory}) {
        if (QFileInfo::exists(path) || QFileInfo(path).isSymLink())
            return refused(
                QStringLiteral("%1 is the result of an earlier run; --force replaces it, "
                               "--append adds to it.")
                    .arg(path));
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
    const QFileInfo log(debug_log);
    if (!debug_log.isEmpty() && log.exists() && !log.isFile() && !is_character_device(debug_log))
        return refused(
            QStringLiteral("the debug log %1 is no file; give --debug-log a FILE.").arg(debug_log));
    // Opens it: nothing else may be made in its folder.
    if (!debug_log.isEmpty() && !can_append_to(debug_log)) {
        return refused(QStringLiteral("cannot write the debug log %1; give --debug-log a FILE in "
                                      "a folder that exists and can be written.")
                           .arg(debug_log));
    }
    return std::nullopt;
}

} // namespace host
