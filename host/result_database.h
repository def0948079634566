// Reads a result database after a run. Opened read-only: the rows are evidence by now.
#pragma once

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <optional>

namespace host {

class result_database
{
public:
    // `path` must exist; is_open() tells whether it is a database.
    explicit result_database(const QString &path);
    ~result_database();
    result_database(const result_database &) = delete;
    result_database &operator=(const result_database &) = delete;

    [[nodiscard]] bool is_open() const { return problem_.isEmpty(); }
    [[nodiscard]] const QString &problem() const { return problem_; }

    // Nothing when there is no such table.
    [[nodiscard]] std::optional<qint64> count(const QString &table);
    // In the order of the table; empty when there is no such table.
    [[nodiscard]] QStringList columns(const QString &table);
    // Hands over each row in the order of its key, at most `limit` rows (negative: all), with the
    // values of `columns`. False when reading failed.
    bool for_each_row(const QString &table, const QStringList &columns, qint64 limit,
                      const std::function<void(const QVariantList &)> &take);

private:
    QSqlDatabase connection_;
    QString problem_;
};

// The tables that the plug-in makes, in the order in which they are reported.
QStringList result_tables();

} // namespace host
