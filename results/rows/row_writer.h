// Runs an insert statement.
#pragma once

#include <QString>

namespace results {

class row_writer
{
public:
    virtual ~row_writer() = default;

    // Inserts a row of `count` texts in the order of the placeholders; a null text becomes NULL,
    // half a surrogate pair U+FFFD. On failure nothing is written and error_text() tells why.
    virtual bool insert(const QString *const *values, int count) = 0;
    [[nodiscard]] virtual QString error_text() const = 0;
    // The statement as written: logs are the same whichever way a row goes.
    [[nodiscard]] virtual QString executed_query() const = 0;
};

// Whether two texts share their memory. Then they are equal. Null and empty texts do not share
// theirs with each other.
[[nodiscard]] inline bool is_same_object(const QString &left, const QString &right)
{
    return left.constData() == right.constData() && left.size() == right.size();
}

} // namespace results
