#include "text/stored_text.h"

namespace text {

namespace {

// The first half that stands alone; text.size() when there is none.
int next_half(const QString &text, int from)
{
    for (int i = from; i < text.size(); ++i) {
        if (!text.at(i).isSurrogate())
            continue;
        const bool starts_pair =
            text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (!starts_pair)
            return i;
        ++i;
    }
    return text.size();
}

} // namespace

QString whole_characters(const QString &text)
{
    int half = next_half(text, 0);
    if (half == text.size())
        return text;
    QString whole = text;
    for (; half < whole.size(); half = next_half(whole, half + 1))
        whole[half] = QChar::ReplacementCharacter;
    return whole;
}

QByteArray stored_utf8(const QString &text)
{
    return text.isNull() ? QByteArray() : whole_characters(text).toUtf8();
}

QString text_for_query(const QString &text)
{
    const QString whole = whole_characters(text);
    const bool has_mark =
        whole.startsWith(QChar::ByteOrderMark) || whole.startsWith(QChar::ByteOrderSwapped);
    return has_mark ? QChar(QChar::ByteOrderMark) + whole : whole;
}

} // namespace text
