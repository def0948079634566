// Read-only access to one file of the examined source.
#pragma once

#include <QByteArray>
#include <QString>

namespace support {

// Opens a file or folder of the source for reading with these flags besides, relative to `parent`
// (or AT_FDCWD), and without changing its access time where the system allows that: Linux lets its
// owner and root ask for it. -1 on failure.
int open_unchanged(int parent, const char *path, int flags);

// Opened for reading only, without changing its access time where the system allows that, without
// following a link in the last component of its path, and only if it is a regular file: a FIFO, a
// device or a socket is never opened for data. Movable, not copyable; closes itself.
class evidence_file
{
public:
    evidence_file() = default;
    ~evidence_file();
    evidence_file(const evidence_file &) = delete;
    evidence_file &operator=(const evidence_file &) = delete;
    evidence_file(evidence_file &&other) noexcept;
    evidence_file &operator=(evidence_file &&other) noexcept;

    // Returns whether the file is open afterwards. A file opened before is closed first.
    bool open(const QString &path);
    bool open(const char *encoded_path);
    // An entry of an open folder, whose path need not be walked again: 1 µs less than open().
    bool open_at(int folder, const char *encoded_name);
    void close();
    [[nodiscard]] bool is_open() const { return descriptor_ >= 0; }
    // The open descriptor, -1 when closed. It stays owned by this object.
    [[nodiscard]] int descriptor() const { return descriptor_; }
    // Size in bytes when it was opened.
    [[nodiscard]] qint64 size() const { return size_bytes_; }

    // Reads up to `length` bytes at `offset`; returns how many, -1 on an error or a bad argument.
    // Fewer than asked for means that the file ends there.
    qint64 read_at(qint64 offset, void *buffer, qint64 length) const;
    // Reads the whole file into `bytes`, reusing its memory. False, leaving `bytes` empty, when the
    // file is larger than `limit_bytes` or cannot be read. A file that grows or shrinks meanwhile
    // gives what was there, never more than the limit.
    bool read_all(QByteArray *bytes, qint64 limit_bytes) const;

private:
    int descriptor_ = -1;
    qint64 size_bytes_ = 0;
};

} // namespace support
