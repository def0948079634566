// Inserts rows through Qt's query object. It works with every build of the driver.
#pragma once

#include "results/rows/row_writer.h"

#include <QSqlDatabase>
#include <QSqlQuery>

#include <vector>

namespace results {

class query_row_writer final : public row_writer
{
public:
    query_row_writer(const QSqlDatabase &database, const char *statement);

    bool insert(const QString *const *values, int count) override;
    [[nodiscard]] QString error_text() const override;
    [[nodiscard]] QString executed_query() const override { return statement_; }

private:
    QSqlQuery query_;
    QString statement_;
    bool prepared_;
    std::vector<QString> bound_; // the text that the query holds for each column
};

} // namespace results
