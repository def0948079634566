// What an insert statement is run by.
#pragma once

#include <QString>

namespace macos {

class row_writer
{
public:
    virtual ~row_writer() = default;

    // Inserts a row of `count` texts in the order of the placeholders; a null text becomes NULL. On
    // failure nothing is written and error_text() tells why.
    virtual bool insert(const QString *const *values, int count) = 0;
    [[nodiscard]] virtual QString error_text() const = 0;
    [[nodiscard]] virtual QString executed_query() const = 0;
};

// Whether two texts share their characters, which says without a look at them that they are equal;
// null and empty ones have characters of their own.
[[nodiscard]] inline bool is_same_object(const QString &left, const QString &right)
{
    return left.constData() == right.constData() && left.size() == right.size();
}

} // namespace macos
