// How deep a binary property list nests, measured without recursion: Foundation reads one by
// calling itself for each container, and has only so much stack.
#pragma once

#include <QByteArray>

namespace formats {

// Whether values stand inside one another deeper than `deepest`, counting the top as one and the
// innermost, too. True as well for a container that holds itself, whose depth has no end, and for
// what is no binary list.
[[nodiscard]] bool nests_deeper(const QByteArray &binary_list, int deepest);

} // namespace formats
