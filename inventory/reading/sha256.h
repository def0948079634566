// SHA-256 of files and bytes.
#pragma once

#include <QByteArray>

#include <memory>

struct evp_md_ctx_st;

namespace inventory {

// Takes bytes piece by piece. By OpenSSL, which uses what the processor has for it.
class sha256
{
public:
    sha256();
    ~sha256();
    sha256(const sha256 &) = delete;
    sha256 &operator=(const sha256 &) = delete;

    void add(const char *bytes, qint64 count);
    // Hexadecimal digits. Nothing can be added any more.
    [[nodiscard]] QByteArray digits();

private:
    evp_md_ctx_st *context_;
};

[[nodiscard]] QByteArray sha256_of(const QByteArray &bytes);

// Of a file that the host names; null when it is no regular file or cannot be read to its end.
[[nodiscard]] QByteArray sha256_of_file(const QString &path);

} // namespace inventory
