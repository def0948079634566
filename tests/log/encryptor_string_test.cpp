#include "log/encryptor_string.h"

#include "tests/fixtures/printing.h"

#include <gtest/gtest.h>

namespace {

struct token_row
{
    const char *name;
    QString text;
    encryptor_string::compression_mode_type compression;
    encryptor_string::protection_mode_type protection;
    const char *token; // base64, made with the random byte 0x5a by a program that shares no code
};

const token_row token_rows[] = {
    {"empty text", QString(), encryptor_string::compression_auto,
     encryptor_string::protection_checksum, "AwJCLZk="},
    {"short text stays plain", QStringLiteral("one line of a log"),
     encryptor_string::compression_auto, encryptor_string::protection_checksum,
     "AwJCBMMOt0NdbRwdzE72AR8iGhnCBw=="},
    {"text goes as UTF-8", QStringLiteral("größer als ASCII ✓"), encryptor_string::compression_auto,
     encryptor_string::protection_checksum, "AwJCEfw5nM5G2V5UkhCmWxZqMw/4E4084CCr"},
    {"repetitive text is compressed", QString(200, QLatin1Char('a')),
     encryptor_string::compression_auto, encryptor_string::protection_checksum,
     "AwNC2F/9KrtNaauPd8kAka8xVnIP"},
    {"hash, never compressed", QStringLiteral("one line of a log"),
     encryptor_string::compression_never, encryptor_string::protection_hash,
     "AwRCqYQGlTe4yo4WPCGM4aB7N1CcBfsFVWxUV4pG9EUULhYYjEL6DA=="},
    {"unprotected, always compressed", QStringLiteral("one line of a log"),
     encryptor_string::compression_always, encryptor_string::protection_none,
     "AwFCLZk7/RTwZ7CUdR8BlLgdbAk0nHIazZG/z34/"},
};

// The random byte goes into every byte behind it by XOR: what a token would be with the other's.
QByteArray with_random_byte_of(const QByteArray &token, const QByteArray &other)
{
    QByteArray changed = token;
    for (int i = 2; i < changed.size(); ++i)
        changed[i] = static_cast<char>(token.at(i) ^ token.at(2) ^ other.at(2));
    return changed;
}

TEST(encryptor_string, makes_and_reads_known_tokens)
{
    for (const token_row &row : token_rows) {
        SCOPED_TRACE(row.name);
        const QByteArray known = QByteArray::fromBase64(row.token);
        encryptor_string cipher;
        cipher.set_compression_mode(row.compression);
        cipher.set_protection_mode(row.protection);
        EXPECT_EQ(with_random_byte_of(cipher.encryptToByteArray(row.text), known), known);
        EXPECT_EQ(cipher.decryptToString(QString::fromLatin1(row.token)), row.text);
        EXPECT_EQ(cipher.error(), encryptor_string::error_none);
    }
}

TEST(encryptor_string, refuses_what_is_no_token)
{
    encryptor_string cipher;
    const QByteArray good = QByteArray::fromBase64(token_rows[1].token);
    EXPECT_TRUE(cipher.decryptToByteArray(good.left(2)).isEmpty());
    EXPECT_EQ(cipher.error(), encryptor_string::error_none);
    QByteArray other_version = good;
    other_version[0] = 4;
    EXPECT_TRUE(cipher.decryptToByteArray(other_version).isEmpty());
    EXPECT_EQ(cipher.error(), encryptor_string::error_unknown_version);
    for (int i = 2; i < good.size(); ++i) {
        QByteArray altered = good;
        altered[i] = static_cast<char>(altered.at(i) ^ 0x10);
        const bool random_byte_of_the_pair = i == 2;
        EXPECT_TRUE(cipher.decryptToByteArray(altered).isEmpty()) << i << random_byte_of_the_pair;
        EXPECT_EQ(cipher.error(), encryptor_string::error_integrity_failed) << i;
    }
}

TEST(encryptor_string, a_forged_length_unpacks_nothing)
{
    encryptor_string cipher;
    cipher.set_compression_mode(encryptor_string::compression_never);
    cipher.set_protection_mode(encryptor_string::protection_none);
    // Announces 2 GiB, followed by bytes that are no stream.
    QByteArray token = cipher.encryptToByteArray(QByteArray("\x7f\xff\xff\xff garbage", 12));
    token[1] = 1;
    EXPECT_TRUE(cipher.decryptToByteArray(token).isEmpty());
}

} // namespace
