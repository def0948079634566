#include "text/list_difference.h"

#include <QSet>

namespace text {

QStringList texts_not_in(const QStringList &known, const QStringList &list,
                         const run::cancellation &cancelled)
{
    const QSet<QString> known_texts(known.cbegin(), known.cend());
    QStringList unmatched;
    for (const QString &item : list) {
        if (cancelled.is_requested())
            break;
        if (!known_texts.contains(item))
            unmatched.append(item);
    }
    return unmatched;
}

} // namespace text
