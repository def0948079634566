#include "text_replace.h"

namespace support {

QString replace_every(const QString &text, QLatin1String before, QLatin1String after)
{
    int match = text.indexOf(before);
    if (match < 0)
        return text;
    QString replaced;
    replaced.reserve(text.size());
    int copied = 0;
    while (match >= 0) {
        replaced.append(text.constData() + copied, match - copied).append(after);
        copied = match + before.size();
        match = text.indexOf(before, copied);
    }
    return replaced.append(text.constData() + copied, text.size() - copied);
}

QString remove_every(const QString &text, QLatin1String what)
{
    return replace_every(text, what, QLatin1String(""));
}

} // namespace support
