// What the inventory says of one list and of its values.
#pragma once

#include "evidence/access/file_status.h"
#include "inventory/places/client_places.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

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

// A list that was found on the source.
struct found_list
{
    QString user;
    list_kind kind = list_kind::bookmark;
    QString place; // name of the place
    QString path;  // as on the source, with a leading "/"
    // Reachable here, free of links, encoded; empty when it must not be opened.
    QByteArray real_path;
    // What is known before it is read. `read`: no reason against it.
    list_status status = list_status::read;
    QString reason;
};

struct stored_value
{
    int item = -1; // of a queue, from 0; -1: of the list as a whole
    QString path;  // of keys and indexes, with "/" between them
    const char *value_class = "";
    // As stored; null when there is nothing to show. Data are hexadecimal digits.
    QString text;
    // Of data only: length, and SHA-256 where the digits leave something out.
    std::optional<qint64> bytes;
    QByteArray sha256;
};

struct list_account
{
    found_list list;
    std::optional<evidence::file_status> file; // none when it could not be looked at
    QByteArray sha256;                         // hexadecimal; empty when it was not read whole
    // Rows that the list promises; none where the list alone does not tell.
    std::optional<qint64> entries;
    std::vector<stored_value> values; // in the order of the list
    bool values_are_whole = true;     // false when some were left out because of their cost
};

} // namespace inventory
