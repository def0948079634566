// Escapes for characters in texts that Core Foundation prints.
#pragma once

#include "run/log_sink.h"

#include <QString>

namespace text {

// Decodes \Uxxxx, surrogate pairs included. An escape that stands for no character stays as it is.
// Logs each step, under the name of the host's library function.
[[nodiscard]] QString convert_string_to_unicode(const QString &text, const run::log_sink &log);

} // namespace text
