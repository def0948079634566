#include "results/rows/query_row_writer.h"
#include "results/rows/result_connection.h"
#include "results/rows/sqlite_row_writer.h"

#include "tests/fixtures/printing.h"

#include <QSqlQuery>
#include <QTemporaryDir>
#include <QVariant>

#include <gtest/gtest.h>

#include <memory>

using namespace results;

namespace {

constexpr char statement[] = "insert into rows (a, b) values (?, ?)";

class row_writer_test : public ::testing::Test
{
protected:
    row_writer_test()
        : connection(QStringLiteral("row writer"), folder.filePath(QStringLiteral("rows.sqlite")),
                     wait)
    {
        EXPECT_TRUE(connection.open());
        run("create table rows (a varchar(100), b INTEGER unique)");
        quick = connection.make_writer(statement);
        by_query = std::make_unique<query_row_writer>(connection.database(), statement);
    }

    void run(const char *command)
    {
        QSqlQuery query(connection.database());
        EXPECT_TRUE(query.exec(QLatin1String(command)));
    }

    // Both rows of texts as they are stored, with their types; takes them out again.
    QStringList take_rows()
    {
        QStringList rows;
        QSqlQuery query(connection.database());
        query.exec(QStringLiteral("select typeof(a), quote(cast(a as blob)), typeof(b), quote(b) "
                                  "from rows order by rowid"));
        while (query.next()) {
            QStringList row;
            for (int i = 0; i < 4; ++i)
                row.append(query.value(i).toString());
            rows.append(row.join(QLatin1Char(' ')));
        }
        run("delete from rows");
        return rows;
    }

    bool insert(row_writer *writer, const QString &a, const QString &b)
    {
        const QString *values[] = {&a, &b};
        return writer->insert(values, 2);
    }

    QTemporaryDir folder;
    lock_wait wait;
    result_connection connection;
    std::unique_ptr<row_writer> quick;
    std::unique_ptr<row_writer> by_query;
};

TEST_F(row_writer_test, shares_the_connection_of_the_driver)
{
    EXPECT_NE(dynamic_cast<sqlite_row_writer *>(quick.get()), nullptr);
}

TEST_F(row_writer_test, both_ways_store_the_same)
{
    const QString shared = QStringLiteral("shared by all rows");
    const QString mark = QChar(QChar::ByteOrderMark);
    const QString swapped_mark = QChar(QChar::ByteOrderSwapped);
    const QString high = QChar(0xd83d);
    const QString low = QChar(0xde00);
    const struct
    {
        QString text;
        QString stored = {}; // where it is not the same
    } texts[] = {{QString()},
                 {QStringLiteral("")},
                 {QStringLiteral("plain")},
                 {QStringLiteral("1589021112")},
                 {shared},
                 {shared},
                 {QStringLiteral("Übung – 東京 😀")},
                 {QStringLiteral("\u0080")},
                 {mark},
                 {mark + mark + QStringLiteral("host")},
                 {swapped_mark + QStringLiteral("secret host")},
                 {QStringLiteral("in the ") + mark + swapped_mark},
                 {high + QStringLiteral("x"), QStringLiteral("\uFFFDx")},
                 {QStringLiteral("x") + low, QStringLiteral("x\uFFFD")},
                 {high + high + low + high, QStringLiteral("\uFFFD😀\uFFFD")},
                 {QStringLiteral("a") + QChar::Null + QStringLiteral("b")},
                 {QString(1 << 20, QLatin1Char('l'))},
                 {QStringLiteral("short again")}};
    QStringList stored[2];
    int way = 0;
    for (row_writer *writer : {quick.get(), by_query.get()}) {
        int number = 0;
        for (const auto &row : texts)
            EXPECT_TRUE(insert(writer, row.text, QString::number(++number)));
        // A row that follows one whose texts it shares, but which is refused.
        EXPECT_FALSE(insert(writer, shared, QStringLiteral("1")));
        EXPECT_TRUE(insert(writer, shared, QString()));
        stored[way++] = take_rows();
    }
    EXPECT_EQ(stored[0], stored[1]);
    ASSERT_EQ(stored[0].size(), int(std::size(texts)) + 1);
    EXPECT_EQ(stored[0].at(0), QStringLiteral("null NULL integer 1"));
    for (int i = 1; i < int(std::size(texts)); ++i) {
        const QString &bytes = texts[i].stored.isNull() ? texts[i].text : texts[i].stored;
        EXPECT_EQ(stored[0].at(i).section(QLatin1Char('\''), 1, 1),
                  QString::fromLatin1(bytes.toUtf8().toHex().toUpper()));
    }
}

TEST_F(row_writer_test, both_ways_fail_in_the_same_words)
{
    const auto words = [this](row_writer *writer) {
        EXPECT_FALSE(insert(writer, QStringLiteral("a"), QStringLiteral("1")));
        return writer->error_text() + writer->executed_query();
    };
    run("insert into rows values ('a', 1)");
    EXPECT_EQ(words(quick.get()), words(by_query.get()));
    const char missing[] = "insert into missing (a, b) values (?, ?)";
    const auto quick_missing = connection.make_writer(missing);
    query_row_writer query_missing(connection.database(), missing);
    EXPECT_EQ(words(quick_missing.get()), words(&query_missing));
    // A table that comes later is found.
    run("create table missing (a text, b text)");
    EXPECT_TRUE(insert(quick_missing.get(), QString(), QString()));
    EXPECT_TRUE(insert(&query_missing, QString(), QString()));
}

// As when the host starts another run from inside the record signal.
TEST_F(row_writer_test, rows_are_lost_with_the_name_of_the_connection)
{
    const QString here = connection.database().databaseName();
    EXPECT_TRUE(insert(quick.get(), QStringLiteral("a"), QStringLiteral("1")));
    result_connection(QStringLiteral("row writer"), QStringLiteral(":memory:"), wait).open();
    EXPECT_FALSE(connection.make_writer(statement)->insert(nullptr, 0));
    quick.reset();
    by_query.reset();
    EXPECT_FALSE(connection.finish());
    EXPECT_TRUE(connection.finish());
    // Nothing is left that would keep others from writing.
    result_connection next(QStringLiteral("next"), here, wait);
    EXPECT_TRUE(next.open());
    EXPECT_TRUE(QSqlQuery(next.database()).exec(QStringLiteral("create table rows (a text)")));
}

} // namespace
