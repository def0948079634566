// Recognises what an examiner points at: a volume, a home, a backup, a collection of files.
#pragma once

#include "inventory/places/client_places.h"
#include "run/cancellation.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace inventory {

// One source as it can be searched.
struct recognised_source
{
    QString path;       // the part of what was given
    QString layout;     // name of the layout
    QString root;       // nothing outside of it is read; ends in "/"
    QString shown_root; // its path on the source
    // Whether the root holds Users/NAME, as the plug-in needs it. If not, the lists are copied into
    // such a tree, and local copies are not looked for.
    bool is_volume = false;
    std::vector<searched_home> homes;   // by user
    std::vector<searched_place> places; // of the homes, or of folders that lie about
    QStringList unreadable_homes;       // whose names are no text
    QStringList outside_homes;          // names of links that lead out of the source
};

struct recognition
{
    std::vector<recognised_source> sources; // empty: nothing was recognised
    QStringList tried;                      // places that were looked at, for people
};

// The names that recognise() takes as `layout`.
[[nodiscard]] QStringList layout_names();

// `path`: a folder or a file, as absolute path. `layout`: a name, or empty for the first that fits.
[[nodiscard]] recognition recognise(const QString &path, const QString &layout,
                                    const run::cancellation &cancelled);

// Adds a home of a volume that its Users folder does not show, as one that may not be listed. False
// when there is none.
bool add_named_home(const QString &user, recognised_source *volume);

} // namespace inventory
