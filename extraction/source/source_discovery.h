// Where the client keeps its data in the users' homes.
#pragma once

#include "run/cancellation.h"
#include "run/log_sink.h"

#include <QString>
#include <QStringList>

namespace extraction {

// At most one entry of each kind per user; existing paths, reachable here, in the order of users.
struct client_data
{
    QStringList bookmark_folders;
    QStringList history_folders;
    QStringList transfer_folders;
    QStringList preference_files;
};

// `source_root` ends in "/". A folder that denies access is logged once. A cancelled search ends
// between two users.
[[nodiscard]] client_data find_client_data(const QString &source_root, const QStringList &users,
                                           const run::cancellation &cancelled,
                                           const run::log_sink &log);

} // namespace extraction
