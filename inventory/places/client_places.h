// Where the client keeps its lists in a home. Shares no code with the extractors' own search: the
// two are compared with each other.
#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

namespace inventory {

enum class list_kind { bookmark, history, transfer, preferences };

// As the inventory names them: "bookmark", "history", "transfer", "preferences".
[[nodiscard]] QString kind_name(list_kind kind);
// The tab that shows the rows of such lists.
[[nodiscard]] QString tab_of(list_kind kind);

struct client_place
{
    list_kind kind;
    const char *name;   // of the place, for people
    const char *path;   // below the home; a folder ends in "/"
    const char *suffix; // of the names of its lists; empty for a single file
};

// Those of one kind follow each other. Rows come from the first one that a home has.
[[nodiscard]] const std::vector<client_place> &client_places();

// One place of one user, to be searched.
struct searched_place
{
    QString user;
    list_kind kind = list_kind::bookmark;
    QString name;
    QString path;  // reachable here; a folder ends in "/"
    QString shown; // the same as on the source
    QByteArray suffix;
};

struct searched_home
{
    QString user;
    QString path;  // reachable here, with a trailing "/"
    QString shown; // the same as on the source
};

[[nodiscard]] std::vector<searched_place> places_of(const searched_home &home);

} // namespace inventory
