// Files and folders of the result directory.
#include "plugin_static_function.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

namespace {

constexpr QDir::Filters every_entry =
    QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
constexpr char copy_directory_signature[] =
    "static void plugin_static_function::copy_directory(QString, QString)";
constexpr qint64 copy_block_bytes = 256 * 1024;

void log_copy_failure(const char *text, const QString &value)
{
    plugin_static_function::app_debug(QLatin1String(text) + value,
                                      QLatin1String(copy_directory_signature));
}

void copy_file(const QString &source, const QString &destination)
{
    QFile from(source);
    if (!from.open(QIODevice::ReadOnly)) {
        log_copy_failure("[copy_directory] source file open ----FAILED---- :", source);
        return;
    }
    QFile to(destination);
    if (!to.open(QIODevice::WriteOnly)) {
        log_copy_failure("[copy_directory] destination file open ----FAILED---- :", destination);
        return;
    }
    while (!from.atEnd() && !plugin_static_function::bool_cancel_extraction) {
        const QByteArray block = from.read(copy_block_bytes);
        if (block.isEmpty() || to.write(block) != block.size()) {
            const QFile &failed = block.isEmpty() ? from : to;
            log_copy_failure("[copy_directory] Error:", failed.errorString());
            return;
        }
    }
}

// `left_out`: the destination of the whole copy, which may lie inside the source.
void copy_tree(const QString &source, const QString &destination, const QString &left_out)
{
    const QDir from(source);
    if (!from.exists()) {
        log_copy_failure("[copy_directory] source diectory does not exist ----FAILED---- :",
                         source);
        return;
    }
    if (!QDir().mkpath(destination)) {
        log_copy_failure("[copy_directory] Error:", destination);
        return;
    }
    const QFileInfoList entries = from.entryInfoList(every_entry, QDir::DirsFirst);
    for (const QFileInfo &entry : entries) {
        if (plugin_static_function::bool_cancel_extraction)
            return;
        if (entry.isSymLink() || entry.absoluteFilePath() == left_out)
            continue;
        const QString copy = destination + QLatin1Char('/') + entry.fileName();
        if (entry.isDir())
            copy_tree(entry.absoluteFilePath(), copy, left_out);
        else if (entry.isFile())
            copy_file(entry.absoluteFilePath(), copy);
    }
}

} // namespace

void plugin_static_function::remove_directory(QString path)
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

bool plugin_static_function::is_file_exist_in_dir(QString dir_path, QString file_name,
                                                  QString caller)
{
    Q_UNUSED(caller)
    const QString wanted = file_name.trimmed();
    QDirIterator entries(dir_path, every_entry);
    while (!bool_cancel_extraction && entries.hasNext()) {
        entries.next();
        if (entries.fileName().trimmed() == wanted)
            return true;
    }
    return false;
}

QString plugin_static_function::get_available_file(QString file_path, QString dir_path,
                                                   QString caller)
{
    QDir().mkpath(dir_path);
    const QString name = QFileInfo(file_path).fileName();
    QString candidate = name;
    for (int counter = 1; !bool_cancel_extraction; ++counter) {
        // A cancellation during the search looks like a free name; only the next test tells.
        if (!is_file_exist_in_dir(dir_path, candidate, caller) && !bool_cancel_extraction)
            return candidate;
        candidate = QString::number(counter) + QLatin1Char('_') + name;
    }
    return QString();
}

// Copies regular files and folders; existing files are overwritten, links and special files are
// left out, so that nothing outside of `source` is ever copied.
void plugin_static_function::copy_directory(QString source, QString destination)
{
    copy_tree(source, destination, QFileInfo(destination).absoluteFilePath());
}
