#include "host/findings/result_reader.h"

#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>

namespace host {

namespace {

// Two may be open at the same time.
QString next_name()
{
    static int last = 0;
    return QStringLiteral("result_reader_%1").arg(++last);
}

QString quoted(QString name)
{
    return QLatin1Char('"') + name.replace(QLatin1Char('"'), QLatin1String("\"\"")) +
           QLatin1Char('"');
}

} // namespace

result_reader::result_reader(const QString &path)
    : name_(next_name())
    , connection_(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name_))
{
    if (!QFileInfo(path).isFile()) {
        problem_ = QStringLiteral("there is no such file");
        return;
    }
    connection_.setDatabaseName(path);
    connection_.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
    // Only the first statement notices a file that is no database.
    QSqlQuery probe(connection_);
    if (!connection_.open())
        problem_ = connection_.lastError().text().simplified();
    else if (!probe.exec(QStringLiteral("select count(*) from sqlite_master")))
        problem_ = probe.lastError().text().simplified();
}

result_reader::~result_reader()
{
    connection_.close();
    connection_ = {};
    QSqlDatabase::removeDatabase(name_);
}

bool result_reader::is_table(const QString &name)
{
    QSqlQuery query(connection_);
    query.prepare(QStringLiteral(
        "select 1 from sqlite_master where type = 'table' and name = ? collate nocase"));
    query.addBindValue(name);
    return query.exec() && query.next();
}

std::optional<qint64> result_reader::count(const QString &table)
{
    if (!is_table(table))
        return std::nullopt;
    QSqlQuery query(connection_);
    if (!query.exec(QStringLiteral("select count(*) from ") + quoted(table)) || !query.next())
        return std::nullopt;
    return query.value(0).toLongLong();
}

QStringList result_reader::columns(const QString &table)
{
    QSqlQuery query(connection_);
    QStringList names;
    if (!is_table(table) || !query.exec(QStringLiteral("pragma table_info(%1)").arg(quoted(table))))
        return names;
    while (query.next())
        names.append(query.value(1).toString());
    return names;
}

QStringList result_reader::tables()
{
    QStringList names;
    QSqlQuery query(connection_);
    query.exec(
        QStringLiteral("select name from sqlite_master where type = 'table' order by rowid"));
    while (query.next())
        names.append(query.value(0).toString());
    return names;
}

bool result_reader::for_each_row(const QString &table, const QStringList &columns,
                                 const conditions &where, qint64 limit,
                                 const std::function<void(const QVariantList &)> &take)
{
    if (!is_table(table))
        return false;
    QStringList quoted_columns;
    for (const QString &column : columns)
        quoted_columns.append(quoted(column));
    QString filter;
    for (const auto &condition : where) {
        filter += filter.isEmpty() ? QStringLiteral("where ") : QStringLiteral("and ");
        filter += QStringLiteral("cast(%1 as text) = ? ").arg(quoted(condition.first));
    }
    QSqlQuery query(connection_);
    query.setForwardOnly(true);
    // The key is the row number.
    if (!query.prepare(QStringLiteral("select ") + quoted_columns.join(QLatin1Char(',')) +
                       QStringLiteral(" from ") + quoted(table) + QLatin1Char(' ') + filter +
                       QStringLiteral("order by rowid limit ?")))
        return false;
    for (const auto &condition : where)
        query.addBindValue(condition.second);
    query.addBindValue(limit);
    if (!query.exec())
        return false;
    while (query.next()) {
        QVariantList row;
        for (int i = 0; i < columns.size(); ++i)
            row.append(query.isNull(i) ? QVariant() : query.value(i));
        take(row);
    }
    return !query.lastError().isValid();
}

} // namespace host
