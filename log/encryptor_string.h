// A light cipher that keeps log files unreadable to a casual reader; it does not resist analysis.
//
// Token: byte 3 (version), one byte of flags, then the body: a random byte, an integrity value
// (checksum, hash or none) and the text's UTF-8 bytes, compressed or not, all chained byte by byte
// with the built-in key. As text a token is base64. Logs written years ago must stay readable: the
// format is fixed.
//
// Nothing throws: a failure gives an empty result and sets last_error.
#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

class encryptor_string
{
public:
    enum compression_mode_type {
        compression_auto = 0,
        compression_always = 1,
        compression_never = 2
    };
    enum protection_mode_type { protection_none = 0, protection_checksum = 1, protection_hash = 2 };
    enum error_type {
        error_none = 0,
        error_no_key_set = 1,
        error_unknown_version = 2,
        error_integrity_failed = 3
    };

    // Reseeds Qt's process-wide pseudo-random generator from the clock.
    encryptor_string();

    void splitKey();

    QByteArray encryptToByteArray(QByteArray plaintext);
    QByteArray encryptToByteArray(QString plaintext);
    QString encryptToString(QByteArray plaintext);
    QString encryptToString(QString plaintext);

    // The QString forms take base64, the QByteArray forms the bytes of a token.
    QByteArray decryptToByteArray(QByteArray cyphertext);
    QByteArray decryptToByteArray(QString cyphertext);
    // Up to the first zero byte of the deciphered text.
    QString decryptToString(QByteArray cyphertext);
    QString decryptToString(QString cyphertext);

    void set_compression_mode(compression_mode_type mode) { compression_mode = mode; }
    void set_protection_mode(protection_mode_type mode) { protection_mode = mode; }
    [[nodiscard]] error_type error() const { return last_error; }

private:
    QByteArray compressed_if_wanted(const QByteArray &data, quint8 *flags) const;
    QByteArray integrity_value(const QByteArray &data, quint8 *flags) const;
    bool take_integrity_value(QByteArray *data, quint8 flags) const;

    quint64 key;
    std::vector<char> key_bytes; // byte 0 is the least significant
    compression_mode_type compression_mode;
    protection_mode_type protection_mode;
    error_type last_error;
};
