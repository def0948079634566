// Tokens of an enciphered log: the first byte holds switches (see below), the rest is a token, the
// inside of one, or a text that has to come back as it was.
#include "fuzzed_text.h"
#include "support/encryptor_string.h"

#include <QtGlobal>

namespace {

using fuzzed::require;

constexpr quint8 compressed_flag = 0x01; // of a token
constexpr int flags_place = 1;

enum class use { token, base64_token, compressed_inside, round_trip };

// What no token can make: zlib packs at most about this well.
constexpr qint64 most_unpacked_per_byte = 1040;

void check_unpacked(const QByteArray &token, const QByteArray &text)
{
    require(text.size() <= token.size() * most_unpacked_per_byte);
}

// Arbitrary bytes hardly ever pass the integrity check, so they get a right one here.
QByteArray with_compressed_inside(encryptor_string *cipher, const QByteArray &inside)
{
    cipher->set_compression_mode(encryptor_string::compression_never);
    QByteArray token = cipher->encryptToByteArray(inside);
    token[flags_place] = static_cast<char>(token.at(flags_place) | compressed_flag);
    return token;
}

void check_round_trip(encryptor_string *cipher, const QByteArray &bytes)
{
    const QByteArray token = cipher->encryptToByteArray(bytes);
    require(cipher->decryptToByteArray(token) == bytes);
    require(cipher->error() == encryptor_string::error_none);
    const QString text = QString::fromUtf8(bytes.constData(), bytes.size());
    const QString line = cipher->encryptToString(text);
    require(!line.contains(QLatin1String("<[{()}]>")));
    require(cipher->decryptToByteArray(line) == text.toUtf8());
}

} // namespace

// Qt warns of every stream that does not unpack.
extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char *>(data + 1), int(size - 1));
    encryptor_string cipher;
    cipher.set_protection_mode(encryptor_string::protection_mode_type(data[0] / 4 % 3));
    cipher.set_compression_mode(encryptor_string::compression_mode_type(data[0] / 16 % 3));
    switch (use(data[0] % 4)) {
    case use::token:
        check_unpacked(bytes, cipher.decryptToByteArray(bytes));
        cipher.decryptToString(bytes);
        break;
    case use::base64_token:
        check_unpacked(bytes, cipher.decryptToByteArray(QString::fromLatin1(bytes)));
        break;
    case use::compressed_inside: {
        const QByteArray token = with_compressed_inside(&cipher, bytes);
        check_unpacked(token, cipher.decryptToByteArray(token));
        break;
    }
    case use::round_trip:
        check_round_trip(&cipher, bytes);
        break;
    }
    return 0;
}
