// The version of the examined system by which the host picks what to scan.
#pragma once

#include <QString>

namespace text {

// Of a source's full version, the number that stands for a major release. `scheme` names the
// scheme, a suffix behind it ("iOS_UID") does not count. "macOS": 10.15.7 gives 10.15, 11.2.3 gives
// 11; "iOS" and "winOS": the first number. Versions may be written with "_" (10_15_7) and with
// words around them. Null for any other scheme and for a source without a version.
[[nodiscard]] QString scan_version(const QString &scheme, const QString &full_version);

} // namespace text
