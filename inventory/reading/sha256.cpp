#include "inventory/reading/sha256.h"

#include "evidence/files/evidence_file.h"
#include "evidence/files/file_names.h"

#include <openssl/evp.h>

#include <new>

namespace inventory {

sha256::sha256()
    : context_(EVP_MD_CTX_new())
{
    if (context_ == nullptr || EVP_DigestInit_ex(context_, EVP_sha256(), nullptr) != 1)
        throw std::bad_alloc();
}

sha256::~sha256()
{
    EVP_MD_CTX_free(context_);
}

void sha256::add(const char *bytes, qint64 count)
{
    EVP_DigestUpdate(context_, bytes, static_cast<size_t>(count));
}

QByteArray sha256::digits()
{
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned length = 0;
    EVP_DigestFinal_ex(context_, digest, &length);
    return QByteArray(reinterpret_cast<const char *>(digest), static_cast<int>(length)).toHex();
}

QByteArray sha256_of(const QByteArray &bytes)
{
    sha256 hash;
    hash.add(bytes.constData(), bytes.size());
    return hash.digits();
}

QByteArray sha256_of_file(const QString &path)
{
    constexpr int block_bytes = 1 << 20;
    evidence::held_file held;
    evidence::evidence_file file;
    if (!held.hold_named_by_host(evidence::encoded_name(path)) ||
        !file.open(std::make_shared<evidence::held_file>(std::move(held))))
        return {};
    sha256 hash;
    QByteArray block(block_bytes, Qt::Uninitialized);
    for (qint64 offset = 0;;) {
        const qint64 count = file.read_at(offset, block.data(), block.size());
        if (count < 0)
            return {};
        if (count == 0)
            return hash.digits();
        hash.add(block.constData(), count);
        offset += count;
    }
}

} // namespace inventory
