// Inserts rows through Qt's query object: works with every build of the driver.
#pragma once

#include "row_writer.h"

#include <QSqlDatabase>
#include <QSqlQuery>

#include <vector>

namespace macos {

class query_row_writer final : public row_writer
{
public:
    query_row_writer(const QSqlDatabase &database, const char *statement);

    bool insert(const QString *const *values, int count) override;
    [[nodiscard]] QString error_text() const override;
    [[nodiscard]] QString executed_query() const override;

private:
    QSqlQuery query_;
    QString statement_;
    bool prepared_;
    std::vector<QString> bound_; // what the query has for each column
};

} // namespace macos
