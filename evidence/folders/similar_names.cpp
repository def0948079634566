#include "evidence/folders/similar_names.h"

#include "evidence/files/file_names.h"
#include "evidence/folders/folder_listing.h"

#include <fcntl.h>

namespace evidence {

namespace {

QString decomposed(const QByteArray &name)
{
    return decoded_name(name).normalized(QString::NormalizationForm_D);
}

// The same text for all names that differ in accents' composition and in case only.
QString folded(const QByteArray &name)
{
    const QVector<uint> characters = decomposed(name).toUcs4();
    QString text;
    for (const uint character : characters) {
        const uint lower = QChar::toCaseFolded(character);
        text += QString::fromUcs4(&lower, 1);
    }
    return text.normalized(QString::NormalizationForm_D);
}

similar_names::match only_one(const QList<QByteArray> &names)
{
    if (names.size() == 1)
        return {names.constFirst(), false};
    return {QByteArray(), !names.isEmpty()};
}

} // namespace

similar_names::match similar_names::find(const QByteArray &path, const QByteArray &name)
{
    const QList<QByteArray> candidates = listing_of(path).value(folded(name));
    QList<QByteArray> equivalent;
    const QString wanted = decomposed(name);
    for (const QByteArray &candidate : candidates) {
        if (decomposed(candidate) == wanted)
            equivalent.append(candidate);
    }
    return only_one(equivalent.isEmpty() ? candidates : equivalent);
}

const similar_names::listing &similar_names::listing_of(const QByteArray &folder)
{
    QByteArray path = folder;
    while (path.size() > 1 && path.endsWith('/'))
        path.chop(1);
    const auto known = known_.constFind(path);
    if (known != known_.constEnd())
        return *known;
    const listing names = read_listing(path);
    make_room();
    order_.append(path);
    return *known_.insert(path, names);
}

similar_names::listing similar_names::read_listing(const QByteArray &path)
{
    listing names;
    folder_listing folder;
    if (is_spent() || !folder.open(AT_FDCWD, path.constData()))
        return names;
    qint64 entries = 0;
    while (const dirent *entry = folder.next()) {
        ++listed_entries_;
        const bool is_cut = is_spent() || ++entries > limits_.remembered_entries;
        if (is_cut || cancelled_.is_requested())
            return {}; // the entries left out may hold a second candidate
        const QByteArray name(entry->d_name);
        if (encoded_name(decoded_name(name)) == name)
            names[folded(name)].append(name);
    }
    remembered_entries_ += names.size();
    return names;
}

void similar_names::make_room()
{
    while (remembered_entries_ > limits_.remembered_entries && !order_.isEmpty())
        remembered_entries_ -= known_.take(order_.takeFirst()).size();
}

} // namespace evidence
