// Counts the rows of a run.
#pragma once

#include <QtGlobal>

namespace results {

class row_counter
{
public:
    virtual ~row_counter() = default;

    // A row was inserted. The host gets the count while rows are written.
    virtual void row_added() = 0;
    // These counted rows were lost with their transaction.
    virtual void rows_lost(qint64 rows) = 0;
};

} // namespace results
