#include "tests/fixtures/log_capture.h"
#include "tests/fixtures/printing.h"

#include <QSqlDatabase>
#include <QSqlQuery>

#include <gtest/gtest.h>

namespace {

using library = plugin_static_function;

const QString caller = QStringLiteral("void caller()");

class database_helpers : public ::testing::Test
{
protected:
    void SetUp() override
    {
        path = folder.filePath(QStringLiteral("db.sqlite"));
        ASSERT_TRUE(library::execute_db_command_by_dbpath(
            QStringLiteral("create table t(a text, b text)"), path, caller));
        for (const char *value : {" abc ", "def"})
            ASSERT_TRUE(library::execute_db_command_with_addbindvalue_by_dbpath(
                QStringLiteral("insert into t values(?, ?)"), {QStringLiteral("x"), value}, path,
                caller));
        log.take_messages();
    }

    QTemporaryDir folder;
    QString path;
    log_capture log;
};

const QString wrong = QStringLiteral("select nonsense from nowhere");
const QString select_b = QStringLiteral("select a, b from t order by b");

TEST_F(database_helpers, by_path_collects_and_leaves_no_connection)
{
    const QStringList before = QSqlDatabase::connectionNames();
    EXPECT_EQ(library::get_stringlist_from_db_by_dbpath(select_b, 1, path, caller),
              QStringList({QStringLiteral("abc"), QStringLiteral("def")}));
    EXPECT_EQ(library::get_stringlist_from_db_with_addbindvalues_by_dbpath(
                  QStringLiteral("select b from t where b = ?"), {QStringLiteral("def")}, 0, path,
                  caller),
              QStringList(QStringLiteral("def")));
    EXPECT_EQ(library::get_stringlist_from_db_by_dbpath(select_b, 7, path, caller),
              QStringList({QString(), QString()}));
    EXPECT_EQ(QSqlDatabase::connectionNames(), before);
    EXPECT_EQ(
        log.take_messages(),
        QStringList({QStringLiteral(" Start "), QStringLiteral(" end "), QStringLiteral(" Start "),
                     QStringLiteral(" End "), QStringLiteral(" Start "), QStringLiteral(" end ")}));
    EXPECT_EQ(library::get_total_tables_list_by_dbpath(path, caller),
              QStringList(QStringLiteral("t")));
}

TEST_F(database_helpers, texts_are_stored_as_they_are)
{
    const QString text = QChar(QChar::ByteOrderSwapped) + QStringLiteral("x") + QChar(0xd83d);
    ASSERT_TRUE(library::execute_db_command_with_addbindvalue_by_dbpath(
        QStringLiteral("insert into t values(?, '%1')").arg(text.mid(1)), {text}, path, caller));
    EXPECT_EQ(library::get_stringlist_from_db_by_dbpath(
                  QStringLiteral("select hex(a) || ' ' || hex(b) from t where a <> 'x'"), 0, path,
                  caller),
              QStringList(QStringLiteral("EFBFBE78EFBFBD 78EFBFBD")));
}

TEST_F(database_helpers, failure_lines_keep_their_words)
{
    const QString nowhere = folder.filePath(QStringLiteral("missing/db.sqlite"));
    const QString error = QStringLiteral("no such table: nowhere Unable to execute statement");
    const QString no_file = QStringLiteral("unable to open database file Error opening database");
    QSqlDatabase db =
        QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("connection name"));
    db.setDatabaseName(path);
    ASSERT_TRUE(db.open());
    const auto list_by_path = [](const QString &file) {
        return !library::get_stringlist_from_db_by_dbpath(wrong, 0, file, caller).isEmpty();
    };
    const struct
    {
        const char *name;
        bool done;
        QStringList lines;
    } rows[] = {
        {"execute by path, no file",
         library::execute_db_command_by_dbpath(wrong, nowhere, caller),
         {" Destination Db opening --------FAILED------ " + nowhere, "CALLER FUNCTION -  " + caller,
          " error -  " + no_file}},
        {"execute by path",
         library::execute_db_command_by_dbpath(wrong, path, caller),
         {" query  --------FAILED------ db file - " + path, "CALLER FUNCTION -  " + caller,
          " command -  " + wrong, " error -  " + error}},
        {"execute bound by path",
         library::execute_db_command_with_addbindvalue_by_dbpath(wrong, {"v"}, path, caller),
         {" query  --------FAILED------ db file - " + path, " CALLER FUNCTION -  " + caller,
          " command -  " + wrong, " error -  " + error}},
        {"execute by reference",
         library::execute_db_command_by_dbreference(wrong, db, caller),
         {" query  --------FAILED------ db file - " + path, " CALLER FUNCTION -  -  " + caller,
          " command -  " + wrong, " error -  " + error}},
        {"list by reference",
         !library::get_stringlist_from_db_by_dbreference(wrong, 0, db, caller).isEmpty(),
         {" Start ", " query  --------FAILED------db file - " + path,
          " CALLER FUNCTION -  -  " + caller, " command -  " + wrong, " error -  " + error}},
        {"list by path, no file",
         list_by_path(nowhere),
         {" Start ", "Destination Db opening --------FAILED------ " + nowhere,
          "CALLER FUNCTION -  " + caller, "error -  " + no_file}},
        {"list by path",
         list_by_path(path),
         {" Start ", "query  --------FAILED------db file - " + path, "CALLER FUNCTION -  " + caller,
          "command -  " + wrong, "error -  " + error}},
        {"value by reference",
         library::check_value_existence_in_db_by_dbreference(wrong, 0, {}, db),
         {"[check_value_existence_in_db_by_dbpath] query --------FAILED------connection name",
          "[check_value_existence_in_db_by_dbpath]command" + wrong,
          "[check_value_existence_in_db_by_dbpath] error" + error}},
    };
    QStringList expected;
    for (const auto &row : rows) {
        EXPECT_FALSE(row.done) << row.name;
        expected += row.lines;
    }
    EXPECT_EQ(log.take_messages(), expected); // the calls were made in this order
    db.close();
}

TEST_F(database_helpers, a_value_is_found_trimmed_and_by_its_case)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), caller);
    db.setDatabaseName(path);
    ASSERT_TRUE(db.open());
    EXPECT_TRUE(library::check_value_existence_in_db_by_dbreference(select_b, 1,
                                                                    QStringLiteral("  abc "), db));
    EXPECT_FALSE(library::check_value_existence_in_db_by_dbreference(select_b, 1,
                                                                     QStringLiteral("ABC"), db));
    db.close();
}

TEST_F(database_helpers, a_cancelled_call_ends_without_a_word)
{
    library::set_cancel_extraction(true);
    EXPECT_TRUE(library::get_stringlist_from_db_by_dbpath(select_b, 1, path, caller).isEmpty());
    EXPECT_EQ(log.take_messages(), QStringList(QStringLiteral(" Start ")));
    EXPECT_FALSE(library::execute_db_command_with_addbindvalue_by_dbpath(
        QStringLiteral("insert into t values(?, 'z')"), {QStringLiteral("y")}, path, caller));
    EXPECT_TRUE(log.take_messages().isEmpty());
    library::set_cancel_extraction(false);
    EXPECT_EQ(library::get_stringlist_from_db_by_dbpath(select_b, 1, path, caller).size(), 2);
}

} // namespace
