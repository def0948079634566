// "inspect": prints property lists as JSON.
#pragma once

#include "host/options/exit_status.h"

#include <QStringList>

namespace host {

exit_status run_inspect(const QStringList &arguments);

} // namespace host
