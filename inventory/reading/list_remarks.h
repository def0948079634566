// What is odd about the values of a list that was read.
#pragma once

#include "inventory/places/list_finder.h"
#include "inventory/reading/list_account.h"

#include <vector>

namespace inventory {

// Notes times in the future, and local paths outside of the home with what is there on the source.
// Not thread-safe.
class list_remarks
{
public:
    // `root` ends in "/"; what is there is looked for only if it is a whole volume. `now_ms`: since
    // 1970 UTC.
    list_remarks(const QString &root, bool is_volume, qint64 now_ms,
                 const run::cancellation &cancelled);

    // At most 100 for one list.
    [[nodiscard]] std::vector<found_note> of(const list_account &account);

private:
    [[nodiscard]] QString what_is_at(const QString &recorded);

    bool is_volume_;
    QString root_;
    qint64 now_ms_;
    evidence::source_boundary boundary_;
};

} // namespace inventory
