// "plugin_host show": prints the tables of a result database.
#pragma once

#include "host/options/exit_status.h"

#include <QStringList>

namespace host {

exit_status run_show(const QStringList &arguments);

} // namespace host
