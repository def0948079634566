// "plugin_host extract": runs the plug-in on one source.
#pragma once

#include "host/options/exit_status.h"

#include <QStringList>

namespace host {

exit_status run_extract(const QStringList &arguments);

} // namespace host
