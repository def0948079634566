// Finds the entry of a folder that a name means on the examined Mac although it is spelled in
// another way. The client records names with composed accents, HFS+ stores them decomposed, and
// most volumes do not tell capitals apart.
#pragma once

#include "run/cancellation.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

namespace evidence {

// What searching may cost in the life of one object.
struct similar_names_limits
{
    qint64 listed_entries = 20'000'000;    // of all listings together; afterwards nothing is found
    qint64 remembered_entries = 1'000'000; // about 200 bytes each; the oldest listing goes first
};

class similar_names
{
public:
    // Once `cancelled`, nothing more is found.
    explicit similar_names(run::cancellation cancelled = {},
                           const similar_names_limits &limits = {})
        : cancelled_(cancelled)
        , limits_(limits)
    {
    }

    struct match
    {
        QByteArray name;           // as the folder has it; empty when there is none
        bool is_ambiguous = false; // several entries would do
    };

    // For a `name` that the folder at `path` does not have: the one entry that is canonically
    // equivalent to it, else the one that differs in the case of letters only, by Unicode's simple
    // case folding. Both as the file system stores names.
    [[nodiscard]] match find(const QByteArray &path, const QByteArray &name);

    // Whether folders were left out because listing them costs more than one may.
    [[nodiscard]] bool is_spent() const { return listed_entries_ >= limits_.listed_entries; }

private:
    // The names of a folder by their folded form.
    using listing = QHash<QString, QList<QByteArray>>;

    [[nodiscard]] const listing &listing_of(const QByteArray &path);
    [[nodiscard]] listing read_listing(const QByteArray &path);
    void make_room();

    run::cancellation cancelled_;
    similar_names_limits limits_;
    QHash<QByteArray, listing> known_; // by path
    QList<QByteArray> order_;          // of known_, the oldest first
    qint64 remembered_entries_ = 0;
    qint64 listed_entries_ = 0;
};

} // namespace evidence
