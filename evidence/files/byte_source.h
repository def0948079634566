// Bytes of one file and the files of one folder, on disk or in memory, so that a reader can be fed
// without a file system. Not thread-safe.
#pragma once

#include "evidence/files/evidence_file.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <memory>

namespace evidence {

class byte_source
{
public:
    virtual ~byte_source() = default;
    // In bytes. May be out of date for a file that changes meanwhile.
    [[nodiscard]] virtual qint64 size() const = 0;
    // Up to `length` bytes at `offset`: fewer where the bytes end, none on an error or for an
    // offset outside. Allocates no more than the source holds.
    [[nodiscard]] virtual QByteArray read(qint64 offset, qint64 length) = 0;
};

// One regular file of the examined source.
class evidence_byte_source final : public byte_source
{
public:
    explicit evidence_byte_source(evidence::evidence_file file);
    [[nodiscard]] qint64 size() const override { return file_.size(); }
    [[nodiscard]] QByteArray read(qint64 offset, qint64 length) override;

private:
    evidence::evidence_file file_;
};

class memory_byte_source final : public byte_source
{
public:
    explicit memory_byte_source(QByteArray bytes);
    [[nodiscard]] qint64 size() const override { return bytes_.size(); }
    [[nodiscard]] QByteArray read(qint64 offset, qint64 length) override;

private:
    QByteArray bytes_;
};

class byte_folder
{
public:
    virtual ~byte_folder() = default;
    // Null when there is no such regular file, or it cannot be opened; `error` is then the system's
    // number for the reason, ENOENT for a file that is not there.
    [[nodiscard]] virtual std::unique_ptr<byte_source> open(const QString &name,
                                                            int *error) const = 0;
};

class memory_byte_folder final : public byte_folder
{
public:
    explicit memory_byte_folder(QHash<QString, QByteArray> files);
    [[nodiscard]] std::unique_ptr<byte_source> open(const QString &name, int *error) const override;

private:
    QHash<QString, QByteArray> files_;
};

} // namespace evidence
