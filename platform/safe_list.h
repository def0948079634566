// Which property lists may be given to a reader that recurses into each container. A list that
// nests too deep would overflow its stack.
#pragma once

#include <QByteArray>
#include <QString>

namespace platform {

// Whether `bytes` are an XML list that is readable as a whole, or a binary list that does not nest
// too deep; within the limits for lists. The text form that came before both is never safe: the
// client does not write it.
[[nodiscard]] bool is_safe_list(const QByteArray &bytes);

// The same for the file at `path`, which has to be a regular file; no link in the last component is
// followed. False when there is not enough memory to tell.
[[nodiscard]] bool is_safe_list_file(const QString &path);

} // namespace platform
