// Differences of lists of texts.
#pragma once

#include "run/cancellation.h"

#include <QStringList>

namespace text {

// The texts of `list` that are not in `known`, in their order. Cut short when cancelled.
[[nodiscard]] QStringList texts_not_in(const QStringList &known, const QStringList &list,
                                       const run::cancellation &cancelled);

} // namespace text
