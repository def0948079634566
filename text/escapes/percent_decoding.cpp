#include "text/escapes/percent_decoding.h"

#include <QByteArray>

namespace text {

namespace {

constexpr int no_digit = -1;

int hexadecimal_digit(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    const char lower = static_cast<char>(character | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : no_digit;
}

} // namespace

QString percent_decoded(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    QByteArray decoded;
    decoded.reserve(bytes.size());
    for (int i = 0; i < bytes.size(); ++i) {
        const bool has_room = bytes.at(i) == '%' && i + 2 < bytes.size();
        const int high = has_room ? hexadecimal_digit(bytes.at(i + 1)) : no_digit;
        const int low = has_room ? hexadecimal_digit(bytes.at(i + 2)) : no_digit;
        if (high == no_digit || low == no_digit) {
            decoded += bytes.at(i);
            continue;
        }
        decoded += static_cast<char>(high * 16 + low);
        i += 2;
    }
    const QString result = QString::fromUtf8(decoded.constData(), decoded.size());
    // Qt takes a leading byte-order mark away; here it is a character of the text.
    const bool is_marked = decoded.startsWith("\xef\xbb\xbf");
    return is_marked ? QChar(QChar::ByteOrderMark) + result : result;
}

} // namespace text
