// What a source is like, to tell whether anything of it has changed.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

// Of every entry below a folder, by its path: kind, mode, owner, links, inode, size, times to the
// nanosecond, target, extended attributes and a hash of the content. The access times of links are
// left out: Linux sets them whenever a link is read, and nothing can be done about it.
using evidence_snapshot = QMap<QByteArray, QByteArray>;

[[nodiscard]] evidence_snapshot snapshot_of(const QString &folder);

// Sets the access time of everything below a folder to a time long before its last change: then
// any file system that keeps access times at all would set it anew when something is read.
void age_access_times(const QString &folder);

// The entries that differ, for people.
[[nodiscard]] QByteArray differences(const evidence_snapshot &before,
                                     const evidence_snapshot &after);
