// "scan": says what a source holds and what a run would read. Writes nothing.
#pragma once

#include "host/options/exit_status.h"
#include "host/options/extract_options.h"

#include <QStringList>

namespace host {

exit_status run_scan(const QStringList &arguments);

// The same for the sources of an extraction.
exit_status scan_sources(const extract_options &options);

} // namespace host
