// What the inventory says of one list and of its values.
#pragma once

#include "evidence/access/file_status.h"
#include "inventory/places/found_list.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace inventory {

struct stored_value
{
    int item = -1;   // of a queue, from 0; -1: of the list as a whole
    QByteArray path; // of keys and indexes, with "/" between them; UTF-8
    const char *value_class = "";
    // As stored, UTF-8; null when there is nothing to show. Data are hexadecimal digits.
    QByteArray text;
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
