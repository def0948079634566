// The attributes of local copies that the examiner selected in addition to those of every row.
#pragma once

#include "run/cancellation.h"

#include <QStringList>

namespace extraction {

// Removes the names of the attributes that every row has anyway.
[[nodiscard]] QStringList without_own_attributes(const QStringList &selected,
                                                 const run::cancellation &cancelled);

} // namespace extraction
