// The log, cancellation and lock wait of the run, for work on a database.
#pragma once

#include "results/database/lock_wait.h"
#include "run/cancellation.h"
#include "run/log_sink.h"

#include <QSet>
#include <QString>

namespace results {

// All outlive the work.
struct database_context
{
    const run::log_sink &log;
    run::cancellation cancelled;
    lock_wait &wait;
    // Names of connections that stay registered with Qt when a function returns. Null for work that
    // leaves none.
    QSet<QString> *left_connections = nullptr;
};

} // namespace results
