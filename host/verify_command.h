// "verify": checks that a result, and the sources it was made from, are what they were.
#pragma once

#include "host/options/exit_status.h"

#include <QStringList>

namespace host {

exit_status run_verify(const QStringList &arguments);

} // namespace host
