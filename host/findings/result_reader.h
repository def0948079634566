// Reads a result database after a run. Opens it read-only: the rows are evidence.
#pragma once

#include <QList>
#include <QPair>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <optional>

namespace host {

class result_reader
{
public:
    // `path` must exist. is_open() tells whether it is a database.
    explicit result_reader(const QString &path);
    ~result_reader();
    result_reader(const result_reader &) = delete;
    result_reader &operator=(const result_reader &) = delete;

    [[nodiscard]] bool is_open() const { return problem_.isEmpty(); }
    [[nodiscard]] const QString &problem() const { return problem_; }

    // A view counts as no table: it may compute what no run wrote, without end.
    //
    // Nothing when there is no such table.
    [[nodiscard]] std::optional<qint64> count(const QString &table);
    // In the order of the table; empty when there is no such table.
    [[nodiscard]] QStringList columns(const QString &table);
    [[nodiscard]] QStringList tables();
    // A column, and the text that it must have.
    using conditions = QList<QPair<QString, QString>>;
    // Hands over the rows in the order of their key with the values of `columns`, at most `limit`
    // rows (negative: all). False when reading failed.
    bool for_each_row(const QString &table, const QStringList &columns, const conditions &where,
                      qint64 limit, const std::function<void(const QVariantList &)> &take);

private:
    [[nodiscard]] bool is_table(const QString &name);

    QString name_; // of the connection
    QSqlDatabase connection_;
    QString problem_;
};

} // namespace host
