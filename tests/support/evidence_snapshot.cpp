#include "evidence_snapshot.h"

#include <QCryptographicHash>
#include <QFile>

#include <gtest/gtest.h>

#include <climits>
#include <functional>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

QByteArray time_text(const timespec &time)
{
    return QByteArray::number(qint64{time.tv_sec}) + '.' + QByteArray::number(qint64{time.tv_nsec});
}

// Without changing the access time, or the snapshot itself would.
int open_quietly(const QByteArray &path, int flags)
{
    const int descriptor =
        ::open(path.constData(), flags | O_RDONLY | O_NOATIME | O_NOFOLLOW | O_NONBLOCK);
    return descriptor >= 0 ? descriptor
                           : ::open(path.constData(), flags | O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
}

QByteArray content_hash(const QByteArray &path)
{
    const int descriptor = open_quietly(path, 0);
    if (descriptor < 0)
        return "unreadable";
    QCryptographicHash hash(QCryptographicHash::Sha256);
    char buffer[1 << 16];
    for (ssize_t got = 0; (got = ::read(descriptor, buffer, sizeof buffer)) > 0;)
        hash.addData(buffer, static_cast<int>(got));
    ::close(descriptor);
    return hash.result().toHex();
}

QByteArray attributes_of(const QByteArray &path)
{
    QByteArray names(1 << 16, '\0');
    const ssize_t length = ::llistxattr(path, names.data(), size_t(names.size()));
    names.truncate(static_cast<int>(qMax<ssize_t>(length, 0)));
    QByteArray described;
    for (const QByteArray &name : names.split('\0')) {
        QByteArray value(1 << 16, '\0');
        const ssize_t size =
            name.isEmpty() ? -1 : ::lgetxattr(path, name, value.data(), size_t(value.size()));
        if (size >= 0)
            described += ' ' + name + '=' + value.left(static_cast<int>(size)).toHex();
    }
    return described;
}

QByteArray description(const QByteArray &path, const struct stat &status)
{
    QByteArray text = "mode " + QByteArray::number(status.st_mode, 8) + " owner " +
                      QByteArray::number(status.st_uid) + ':' + QByteArray::number(status.st_gid) +
                      " links " + QByteArray::number(quint64{status.st_nlink}) + " inode " +
                      QByteArray::number(quint64{status.st_ino}) + " size " +
                      QByteArray::number(qint64{status.st_size}) + " modified " +
                      time_text(status.st_mtim) + " changed " + time_text(status.st_ctim);
    if (S_ISLNK(status.st_mode)) {
        char target[PATH_MAX];
        const ssize_t length = ::readlink(path, target, sizeof target);
        return text + " to " + QByteArray(target, static_cast<int>(qMax<ssize_t>(length, 0)));
    }
    text += " read " + time_text(status.st_atim) + attributes_of(path);
    return S_ISREG(status.st_mode) ? text + " content " + content_hash(path) : text;
}

void visit(const QByteArray &path,
           const std::function<void(const QByteArray &, const struct stat &)> &entry)
{
    struct stat status = {};
    ASSERT_EQ(::lstat(path, &status), 0) << path.constData();
    entry(path, status);
    if (!S_ISDIR(status.st_mode))
        return;
    const int descriptor = open_quietly(path, O_DIRECTORY);
    DIR *const folder = descriptor < 0 ? nullptr : ::fdopendir(descriptor);
    if (folder == nullptr)
        return;
    while (const dirent *found = ::readdir(folder)) {
        const QByteArray name(found->d_name);
        if (name != "." && name != "..")
            visit(path + '/' + name, entry);
    }
    ::closedir(folder);
}

} // namespace

evidence_snapshot snapshot_of(const QString &folder)
{
    evidence_snapshot found;
    visit(QFile::encodeName(folder), [&found](const QByteArray &path, const struct stat &status) {
        found.insert(path, description(path, status));
    });
    return found;
}

void age_access_times(const QString &folder)
{
    visit(QFile::encodeName(folder), [](const QByteArray &path, const struct stat &) {
        const timespec times[2] = {{1'000'000'000, 0}, {0, UTIME_OMIT}};
        EXPECT_EQ(::utimensat(AT_FDCWD, path, times, AT_SYMLINK_NOFOLLOW), 0);
    });
}

QByteArray differences(const evidence_snapshot &before, const evidence_snapshot &after)
{
    QByteArray text;
    for (auto entry = before.cbegin(); entry != before.cend(); ++entry) {
        if (after.value(entry.key()) != entry.value())
            text += entry.key() + "\n  before: " + entry.value() +
                    "\n  after:  " + after.value(entry.key(), "gone") + '\n';
    }
    for (auto entry = after.cbegin(); entry != after.cend(); ++entry) {
        if (!before.contains(entry.key()))
            text += entry.key() + "\n  is new\n";
    }
    return text;
}
