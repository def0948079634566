// Rows of a result database, to compare what different runs wrote.
#pragma once

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <gtest/gtest.h>

#include <array>

constexpr const char *extracted_tables[] = {"bookmarks", "history", "transfers", "preferences"};

// Of each table the rows in the order of their numbers, each as one text.
using table_rows = std::array<QStringList, 4>;

class result_reader
{
public:
    explicit result_reader(const QString &database)
        : database_(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name()))
    {
        database_.setDatabaseName(database);
        EXPECT_TRUE(database_.open());
    }
    ~result_reader()
    {
        database_ = QSqlDatabase();
        QSqlDatabase::removeDatabase(name());
    }
    result_reader(const result_reader &) = delete;
    result_reader &operator=(const result_reader &) = delete;

    // "ok" when SQLite finds nothing wrong.
    [[nodiscard]] QString integrity() const
    {
        QSqlQuery query(QStringLiteral("PRAGMA integrity_check"), database_);
        return query.next() ? query.value(0).toString() : query.lastError().text();
    }

    // Those numbered above `after`.
    [[nodiscard]] QStringList rows(const char *table, int after = 0) const
    {
        QStringList found;
        QSqlQuery query(database_);
        query.setForwardOnly(true);
        query.exec(QStringLiteral("select * from %1 where INT > %2 order by INT")
                       .arg(QLatin1String(table))
                       .arg(after));
        const int columns = query.record().count();
        while (query.next()) {
            QString row;
            for (int i = 0; i < columns; ++i)
                row += query.isNull(i) ? QStringLiteral("-|")
                                       : query.value(i).toString() + QLatin1Char('|');
            found.append(row);
        }
        return found;
    }

    [[nodiscard]] table_rows all_rows() const
    {
        table_rows found;
        for (size_t i = 0; i < found.size(); ++i)
            found[i] = rows(extracted_tables[i]);
        return found;
    }

private:
    static QString name() { return QStringLiteral("result_reader"); }

    QSqlDatabase database_;
};

[[nodiscard]] inline table_rows rows_in(const QString &database)
{
    return result_reader(database).all_rows();
}

[[nodiscard]] inline int row_count(const table_rows &rows)
{
    int count = 0;
    for (const QStringList &table : rows)
        count += table.size();
    return count;
}

// Whether the table begins with these rows.
[[nodiscard]] inline bool begins_with(const QStringList &rows, const QStringList &start)
{
    return rows.mid(0, start.size()) == start;
}
