// Read-only access to one file of the examined source.
#pragma once

#include "evidence/access/held_file.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace evidence {

// Opened for reading only, without changing its access time where the system allows that, without
// following a link in any component of its path, and only if it is a regular file. A FIFO, a device
// or a socket is not even opened. Movable; closes itself.
class evidence_file
{
public:
    // Returns whether the file is open afterwards. If not, errno holds the reason: ENOENT for
    // anything but a regular file. A file opened before is closed first.
    bool open(const QString &path);
    bool open(const QByteArray &encoded_path);
    // Reads by the descriptor of what is held, which stays held as long as this file is open.
    bool open(std::shared_ptr<const held_file> held);
    // The same for an entry of an open folder that its listing gave as a regular file.
    bool open_listed(int folder, const char *encoded_name);
    void close() { *this = {}; }
    [[nodiscard]] bool is_open() const { return descriptor() >= 0; }
    // The open descriptor, -1 when closed. It stays owned by this object.
    [[nodiscard]] int descriptor() const
    {
        return held_ ? held_->for_reading() : descriptor_.get();
    }
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
    evidence::descriptor descriptor_; // one of the two
    std::shared_ptr<const held_file> held_;
    qint64 size_bytes_ = 0;
};

} // namespace evidence
