// Where the client keeps its lists in a home. Shares no code with the extractors' own search: the
// two are compared with each other.
#pragma once

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

} // namespace inventory
