#include "evidence/copies/working_files.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace evidence {

namespace {

constexpr QDir::Filters every_entry =
    QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
constexpr char copy_directory_signature[] =
    "static void plugin_static_function::copy_directory(QString, QString)";
constexpr qint64 copy_block_bytes = qint64(256) * 1024;

void log_copy_failure(const run::log_sink &log, const char *text, const QString &value)
{
    log.write(text, value, copy_directory_signature);
}

void copy_file(const QString &source, const QString &destination,
               const run::cancellation &cancelled, const run::log_sink &log)
{
    QFile from(source);
    if (!from.open(QIODevice::ReadOnly)) {
        log_copy_failure(log, "[copy_directory] source file open ----FAILED---- :", source);
        return;
    }
    QFile to(destination);
    if (!to.open(QIODevice::WriteOnly)) {
        log_copy_failure(log,
                         "[copy_directory] destination file open ----FAILED---- :", destination);
        return;
    }
    while (!from.atEnd() && !cancelled.is_requested()) {
        const QByteArray block = from.read(copy_block_bytes);
        if (block.isEmpty() || to.write(block) != block.size()) {
            const QFile &failed = block.isEmpty() ? from : to;
            log_copy_failure(log, "[copy_directory] Error:", failed.errorString());
            return;
        }
    }
}

// `left_out`: the destination of the whole copy, which may lie inside the source.
void copy_tree(const QString &source, const QString &destination, const QString &left_out,
               const run::cancellation &cancelled, const run::log_sink &log)
{
    const QDir from(source);
    if (!from.exists()) {
        log_copy_failure(
            log, "[copy_directory] source diectory does not exist ----FAILED---- :", source);
        return;
    }
    if (!QDir().mkpath(destination)) {
        log_copy_failure(log, "[copy_directory] Error:", destination);
        return;
    }
    const QFileInfoList entries = from.entryInfoList(every_entry, QDir::DirsFirst);
    for (const QFileInfo &entry : entries) {
        if (cancelled.is_requested())
            return;
        if (entry.isSymLink() || entry.absoluteFilePath() == left_out)
            continue;
        const QString copy = destination + QLatin1Char('/') + entry.fileName();
        if (entry.isDir())
            copy_tree(entry.absoluteFilePath(), copy, left_out, cancelled, log);
        else if (entry.isFile())
            copy_file(entry.absoluteFilePath(), copy, cancelled, log);
    }
}

} // namespace

void remove_directory(const QString &path)
{
    // An empty path would be the host's working directory; a link leads to somebody else's folder.
    const QFileInfo itself(QDir::cleanPath(path));
    if (path.isEmpty() || itself.isSymLink() || !itself.isDir())
        return;
    const QDir folder(path);
    const QFileInfoList entries = folder.entryInfoList(every_entry, QDir::DirsFirst);
    for (const QFileInfo &entry : entries) {
        if (entry.isDir() && !entry.isSymLink())
            remove_directory(entry.absoluteFilePath());
        else
            QFile::remove(entry.absoluteFilePath());
    }
    folder.rmdir(folder.absolutePath());
}

bool is_file_exist_in_dir(const QString &dir_path, const QString &file_name,
                          const run::cancellation &cancelled)
{
    const QString wanted = file_name.trimmed();
    QDirIterator entries(dir_path, every_entry);
    while (!cancelled.is_requested() && entries.hasNext()) {
        entries.next();
        if (entries.fileName().trimmed() == wanted)
            return true;
    }
    return false;
}

QString get_available_file(const QString &file_path, const QString &dir_path,
                           const run::cancellation &cancelled)
{
    QDir().mkpath(dir_path);
    const QString name = QFileInfo(file_path).fileName();
    QString candidate = name;
    for (int counter = 1; !cancelled.is_requested(); ++counter) {
        // A cancelled search finds no such file either, so the second test decides.
        if (!is_file_exist_in_dir(dir_path, candidate, cancelled) && !cancelled.is_requested())
            return candidate;
        candidate = QString::number(counter) + QLatin1Char('_') + name;
    }
    return QString();
}

void copy_directory(const QString &source, const QString &destination,
                    const run::cancellation &cancelled, const run::log_sink &log)
{
    copy_tree(source, destination, QFileInfo(destination).absoluteFilePath(), cancelled, log);
}

} // namespace evidence
