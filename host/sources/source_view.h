// Copies the lists of a source of another shape into a tree that the plug-in can read.
#pragma once

#include "host/options/exit_status.h"
#include "host/sources/run_sources.h"
#include "run/cancellation.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace host {

struct copied_list
{
    QString from;
    QString to;
    QByteArray sha256; // hexadecimal; of what was read and written
};

struct source_view
{
    QString root; // ends in "/"
    std::vector<copied_list> copies;
    std::optional<failure> problem;
};

// Makes `root`, which must not exist, and copies the lists from which rows come to the places that
// they have on the source. A list that cannot be read is left out: the inventory tells of it. The
// times of the files are kept.
[[nodiscard]] source_view make_view(const run_source &source, const QString &root,
                                    const run::cancellation &cancelled);

} // namespace host
