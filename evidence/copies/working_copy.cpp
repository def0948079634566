#include "evidence/copies/working_copy.h"

#include "evidence/files/evidence_file.h"
#include "evidence/files/file_names.h"
#include "evidence/copies/working_files.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace evidence {

namespace {

constexpr const char *database_companions[] = {"-shm", "-wal"};
constexpr int copy_block_bytes = 256 * 1024;

bool is_same_file(const QString &first, const QString &second)
{
    const QString canonical = QFileInfo(first).canonicalFilePath();
    return !canonical.isEmpty() && canonical == QFileInfo(second).canonicalFilePath();
}

// False on a failure and when cancelled half-way. Copies no more than the size at the start, so a
// file that somebody keeps writing to ends.
bool copy_bytes(const evidence_file &source, const run::cancellation &cancelled, QFile *copy)
{
    QByteArray block(copy_block_bytes, Qt::Uninitialized);
    qint64 offset = 0;
    while (offset < source.size()) {
        if (cancelled.is_requested())
            return false;
        const qint64 wanted = std::min<qint64>(block.size(), source.size() - offset);
        const qint64 length = source.read_at(offset, block.data(), wanted);
        if (length < 0 || copy->write(block.constData(), length) != length)
            return false;
        if (length == 0)
            break;
        offset += length;
    }
    return copy->flush();
}

enum class copy_outcome { copied, no_file, failed };

// Replaces `destination`, unless it is the source itself: deleting that would delete the evidence.
// A file that lay there is removed even if there is nothing to copy. A failure leaves no file.
copy_outcome copy_evidence(const QString &source_path, const QString &destination,
                           const run::cancellation &cancelled)
{
    if (is_same_file(source_path, destination))
        return copy_outcome::failed;
    QFile::remove(destination);
    const auto held = std::make_shared<held_file>();
    evidence_file source;
    if (!held->hold_named_by_host(encoded_name(source_path)) || !source.open(held))
        return copy_outcome::no_file;
    QFile copy(destination);
    if (!copy.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return copy_outcome::failed;
    if (copy_bytes(source, cancelled, &copy))
        return copy_outcome::copied;
    copy.remove();
    return copy_outcome::failed;
}

// SQLite would play a log that an earlier copy left under the destination's name into this
// database, so such a log is removed. A database without its whole log would miss rows, so it is
// removed when copying the log fails.
void copy_database(const QString &source_path, const QString &destination,
                   const run::cancellation &cancelled)
{
    if (copy_evidence(source_path, destination, cancelled) != copy_outcome::copied)
        return;
    for (const char *companion : database_companions) {
        const QLatin1String ending(companion);
        if (copy_evidence(source_path + ending, destination + ending, cancelled) ==
            copy_outcome::failed) {
            for (const char *copied : {"", "-shm", "-wal"})
                QFile::remove(destination + QLatin1String(copied));
            return;
        }
    }
}

} // namespace

QString make_working_copy(const QString &source_path, const QString &folder, copied_file kind,
                          const run::cancellation &cancelled)
{
    // Without a folder the copy would land in the host's working directory.
    if (source_path.trimmed().isEmpty() || folder.isEmpty())
        return QString();
    const QString name = get_available_file(QFileInfo(source_path).fileName(), folder, cancelled);
    QString destination = folder + name;
    if (name.isEmpty())
        return destination;
    if (kind == copied_file::database)
        copy_database(source_path, destination, cancelled);
    else
        copy_evidence(source_path, destination, cancelled);
    return destination;
}

} // namespace evidence
