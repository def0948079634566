#include "text/text_replace.h"

#include <algorithm>

namespace text {

namespace {

bool starts_with(const QChar *unit, const QChar *end, QLatin1String what)
{
    if (end - unit < what.size())
        return false;
    return std::equal(what.begin(), what.end(), unit,
                      [](char wanted, QChar found) { return QLatin1Char(wanted) == found; });
}

} // namespace

void replace_every(QString *text, QLatin1String before, QLatin1String after)
{
    if (text->isEmpty()) // a null text stays null
        return;
    if (before.isEmpty() || after.size() > before.size()) {
        text->replace(before, after);
        return;
    }
    const QChar *unread = text->data();
    const QChar *end = unread + text->size();
    QChar *written = text->data();
    while (unread != end) {
        if (starts_with(unread, end, before)) {
            for (const char sign : after)
                *written++ = QLatin1Char(sign);
            unread += before.size();
        } else {
            *written++ = *unread++;
        }
    }
    text->resize(static_cast<int>(written - text->data()));
}

void remove_every(QString *text, QLatin1String what)
{
    replace_every(text, what, QLatin1String(""));
}

} // namespace text
