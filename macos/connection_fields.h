// What the client writes of a connection, in the same keys wherever it does: in a bookmark, a past
// connection and a transfer's host.
#pragma once

#include "platform/property_list.h"

#include <QString>

namespace macos {

// All texts, trimmed; null where the dictionary has no such text.
struct connection_fields
{
    QString protocol;
    QString uuid;
    QString hostname;
    QString port;
    QString username;
    QString comment;
    QString access_timestamp; // seconds since 1970 UTC
};

void read_connection(const platform::property_list_value &dictionary, connection_fields *fields);

} // namespace macos
