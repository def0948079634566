// The source, the settings and the run that an extraction works with.
#pragma once

#include "extraction/source/source_paths.h"
#include "results/database/database_context.h"
#include "results/rows/row_counter.h"
#include "run/cancellation.h"
#include "run/log_sink.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace extraction {

struct examined_source
{
    QString root;       // where its file system is reachable; ends in "/"
    QString type;       // "macOS_Home_Directory" marks a single home folder
    QString os_display; // the scheme as the examiner sees it; stored in every row
    QString count_name; // "Source1"; stored in every row
    QList<source_user> accounts;
};

// The log, the waits and the counter outlive the extraction.
struct extraction_context
{
    examined_source source;
    QString database_path;
    QStringList selected_attributes; // of the local copies, in addition to those of every row
    const run::log_sink &log;
    run::cancellation cancelled;
    results::lock_wait &wait;
    results::row_counter &counter;

    [[nodiscard]] results::database_context database() const { return {log, cancelled, wait}; }
};

} // namespace extraction
