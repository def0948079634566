// Files and folders of the result directory.
#pragma once

#include "run/cancellation.h"
#include "run/log_sink.h"

#include <QString>

namespace evidence {

// Removes a folder and everything below it; follows no link, and does nothing for an empty path, a
// link or a file.
void remove_directory(const QString &path);
// Whether the folder has an entry of that name; blanks around names do not count.
[[nodiscard]] bool is_file_exist_in_dir(const QString &dir_path, const QString &file_name,
                                        const run::cancellation &cancelled);
// A name, made from that of `file_path`, that is free in `dir_path`, which is made; null when
// cancelled.
[[nodiscard]] QString get_available_file(const QString &file_path, const QString &dir_path,
                                         const run::cancellation &cancelled);
// Copies regular files and folders; existing files are overwritten, links and special files are
// left out, so that nothing outside of `source` is ever copied. Failures are logged.
void copy_directory(const QString &source, const QString &destination,
                    const run::cancellation &cancelled, const run::log_sink &log);

} // namespace evidence
