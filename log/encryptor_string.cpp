#include "log/encryptor_string.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDebug>
#include <QtEndian>

namespace {

constexpr quint64 built_in_key = 0x5C3E91D7A2B46F18ULL;
constexpr char token_version = 3;
constexpr int key_length = 8;
constexpr int best_compression = 9;
constexpr int checksum_length = 2;
constexpr int hash_length = 20;
constexpr int compressed_header_length = 4; // big-endian length of the plain data
constexpr qint64 best_deflate_ratio = 1032; // no zlib stream unpacks to more than this

enum flag : quint8 { flag_compressed = 0x01, flag_checksum = 0x02, flag_hash = 0x04 };

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED
// The generator is the process-wide one that other code of the host may draw from as well.
void seed_generator()
{
    qsrand(static_cast<uint>(QDateTime::currentMSecsSinceEpoch() & 0xFFFF));
}

char random_byte()
{
    return static_cast<char>(qrand() & 0xFF);
}
QT_WARNING_POP

QByteArray checksum_of(const QByteArray &data)
{
    QByteArray bytes(checksum_length, '\0');
    qToBigEndian(qChecksum(data.constData(), static_cast<uint>(data.size())), bytes.data());
    return bytes;
}

QByteArray hash_of(const QByteArray &data)
{
    return QCryptographicHash::hash(data, QCryptographicHash::Sha1);
}

QByteArray uncompressed(const QByteArray &data)
{
    if (data.size() < compressed_header_length)
        return {};
    // The announced length is allocated before anything is unpacked: a forged one must not be.
    const qint64 announced = qFromBigEndian<quint32>(data.constData());
    if (announced > data.size() * best_deflate_ratio)
        return {};
    return qUncompress(data);
}

} // namespace

encryptor_string::encryptor_string()
    : key(0)
    , compression_mode(compression_auto)
    , protection_mode(protection_checksum)
    , last_error(error_none)
{
    seed_generator();
    key = built_in_key;
    splitKey();
}

void encryptor_string::splitKey()
{
    key_bytes.clear();
    key_bytes.resize(key_length);
    for (size_t i = 0; i < key_bytes.size(); ++i)
        key_bytes[i] = static_cast<char>((key >> (8 * i)) & 0xFF);
}

QByteArray encryptor_string::compressed_if_wanted(const QByteArray &data, quint8 *flags) const
{
    if (compression_mode == compression_never)
        return data;
    const QByteArray packed = qCompress(data, best_compression);
    if (compression_mode == compression_auto && packed.size() >= data.size())
        return data;
    *flags |= flag_compressed;
    return packed;
}

QByteArray encryptor_string::integrity_value(const QByteArray &data, quint8 *flags) const
{
    if (protection_mode == protection_checksum) {
        *flags |= flag_checksum;
        return checksum_of(data);
    }
    if (protection_mode == protection_hash) {
        *flags |= flag_hash;
        return hash_of(data);
    }
    return {};
}

QByteArray encryptor_string::encryptToByteArray(QByteArray plaintext)
{
    if (key_bytes.empty()) {
        qWarning() << "No key set.";
        last_error = error_no_key_set;
        return {};
    }
    quint8 flags = 0;
    const QByteArray data = compressed_if_wanted(plaintext, &flags);
    const QByteArray integrity = integrity_value(data, &flags);

    QByteArray body = random_byte() + integrity + data;
    char previous = 0;
    for (int i = 0; i < body.size(); ++i) {
        previous = static_cast<char>(body.at(i) ^ key_bytes[static_cast<size_t>(i % key_length)] ^
                                     previous);
        body[i] = previous;
    }
    last_error = error_none;
    return token_version + QByteArray(1, static_cast<char>(flags)) + body;
}

QByteArray encryptor_string::encryptToByteArray(QString plaintext)
{
    return encryptToByteArray(plaintext.toUtf8());
}

QString encryptor_string::encryptToString(QByteArray plaintext)
{
    return QString::fromLatin1(encryptToByteArray(plaintext).toBase64());
}

QString encryptor_string::encryptToString(QString plaintext)
{
    return encryptToString(plaintext.toUtf8());
}

bool encryptor_string::take_integrity_value(QByteArray *data, quint8 flags) const
{
    int length = 0;
    if ((flags & flag_checksum) != 0)
        length = checksum_length;
    else if ((flags & flag_hash) != 0)
        length = hash_length;
    if (data->size() < length)
        return false;
    const QByteArray stored = data->left(length);
    data->remove(0, length);
    if (length == checksum_length)
        return stored == checksum_of(*data);
    return length == 0 || stored == hash_of(*data);
}

QByteArray encryptor_string::decryptToByteArray(QByteArray cyphertext)
{
    if (key_bytes.empty()) {
        qWarning() << "No key set.";
        last_error = error_no_key_set;
        return {};
    }
    if (cyphertext.size() < 3)
        return {};
    if (cyphertext.at(0) != token_version) {
        last_error = error_unknown_version;
        qWarning() << "Invalid version or not a cyphertext.";
        return {};
    }
    const auto flags = static_cast<quint8>(cyphertext.at(1));
    QByteArray body = cyphertext.mid(2);
    char previous = 0;
    for (int i = 0; i < body.size(); ++i) {
        const char enciphered = body.at(i);
        body[i] = static_cast<char>(enciphered ^ previous ^
                                    key_bytes[static_cast<size_t>(i % key_length)]);
        previous = enciphered;
    }
    body.remove(0, 1); // the random byte
    if (!take_integrity_value(&body, flags)) {
        last_error = error_integrity_failed;
        return {};
    }
    last_error = error_none;
    return (flags & flag_compressed) != 0 ? uncompressed(body) : body;
}

QByteArray encryptor_string::decryptToByteArray(QString cyphertext)
{
    return decryptToByteArray(QByteArray::fromBase64(cyphertext.toLatin1()));
}

QString encryptor_string::decryptToString(QByteArray cyphertext)
{
    return QString::fromUtf8(decryptToByteArray(cyphertext));
}

QString encryptor_string::decryptToString(QString cyphertext)
{
    return QString::fromUtf8(decryptToByteArray(cyphertext));
}
