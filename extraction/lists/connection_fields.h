// The values of a connection. The client writes them under the same keys in a bookmark, a past
// connection and the host of a transfer.
#pragma once

#include "platform/property_list.h"

#include <QString>

namespace extraction {

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

void read_connection(const formats::property_list_value &dictionary, connection_fields *fields);

} // namespace extraction
