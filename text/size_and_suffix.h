// Sizes for display, and suffixes of file names.
#pragma once

#include <QString>

namespace text {

// A number of bytes as "5 B", "1.50 KB" or "2.00 MB"; null for an empty text. Larger units than MB
// are not used, so that displayed sizes compare; a size beyond the signed range shows as the
// negative number of bytes that it is to the host.
[[nodiscard]] QString human_readable_size(QString text);
// What follows the last "." of the last component; null without one. A leading "." does not count.
[[nodiscard]] QString mining_suffix(QString text);

} // namespace text
