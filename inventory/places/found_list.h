// A list that was found on a source.
#pragma once

#include "inventory/places/client_places.h"

#include <QByteArray>
#include <QString>

namespace inventory {

enum class list_status { read, skipped, failed };

// "read", "skipped", "failed".
[[nodiscard]] inline QString status_name(list_status status)
{
    switch (status) {
    case list_status::read:
        return QStringLiteral("read");
    case list_status::skipped:
        return QStringLiteral("skipped");
    case list_status::failed:
        break;
    }
    return QStringLiteral("failed");
}

struct found_list
{
    QString user;
    list_kind kind = list_kind::bookmark;
    QString place; // name of the place
    QString path;  // as on the source, with a leading "/"
    // Reachable here, free of links, encoded; empty when it must not be opened.
    QByteArray real_path;
    bool is_listed_file = false; // its folder's listing gave it as a regular file
    // What is known before it is read. `read`: no reason against it.
    list_status status = list_status::read;
    QString reason;
};

} // namespace inventory
