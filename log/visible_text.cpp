#include "log/visible_text.h"

namespace logging {

namespace {

bool is_hidden(uint character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate: // half a pair
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

// UTF-16 units of the character at `index`.
int units_at(const QString &text, int index)
{
    const bool is_pair = text.at(index).isHighSurrogate() && index + 1 < text.size() &&
                         text.at(index + 1).isLowSurrogate();
    return is_pair ? 2 : 1;
}

bool is_written_out(const QString &text, int index, int units)
{
    const QChar first = text.at(index);
    if (units == 2)
        return is_hidden(QChar::surrogateToUcs4(first, text.at(index + 1)));
    if (first == QLatin1Char('\\'))
        return index + 1 < text.size() && text.at(index + 1) == QLatin1Char('u');
    return is_hidden(first.unicode());
}

int first_written_out(const QString &text)
{
    for (int index = 0, units = 0; index < text.size(); index += units) {
        units = units_at(text, index);
        if (is_written_out(text, index, units))
            return index;
    }
    return text.size();
}

} // namespace

QString visible_text(const QString &text)
{
    int index = first_written_out(text);
    if (index == text.size())
        return text;
    QString visible = text.left(index);
    for (int units = 0; index < text.size(); index += units) {
        units = units_at(text, index);
        if (!is_written_out(text, index, units)) {
            visible += text.midRef(index, units);
            continue;
        }
        for (int unit = index; unit < index + units; ++unit)
            visible +=
                QStringLiteral("\\u%1").arg(text.at(unit).unicode(), 4, 16, QLatin1Char('0'));
    }
    return visible;
}

} // namespace logging
