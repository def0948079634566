#include "child_process.h"

#include "result_rows.h"

#include <QDirIterator>
#include <QFile>

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

namespace {

constexpr uid_t nobody = 65534;

void give_away(const QString &path)
{
    EXPECT_EQ(::lchown(QFile::encodeName(path).constData(), nobody, nobody), 0);
}

} // namespace

void run_unprivileged(const QString &folder, const std::function<void()> &part)
{
    if (::geteuid() != 0) {
        part();
        return;
    }
    give_away(folder);
    QDirIterator entries(folder,
                         QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext())
        give_away(entries.next());

    std::fflush(nullptr);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const bool dropped = ::setgroups(0, nullptr) == 0 && ::setgid(nobody) == 0 &&
                             ::setuid(nobody) == 0 && ::setuid(0) != 0;
        EXPECT_TRUE(dropped);
        if (dropped)
            part();
        std::fflush(nullptr);
        ::_exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
}

database_lock::database_lock(const QString &database, const QStringList &begin)
{
    int to_child[2];
    int from_child[2];
    EXPECT_EQ(::pipe(to_child), 0);
    EXPECT_EQ(::pipe(from_child), 0);
    std::fflush(nullptr);
    child_ = ::fork();
    char byte = 'n';
    if (child_ == 0) {
        ::close(to_child[1]);
        QSqlDatabase db =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("database_lock"));
        db.setDatabaseName(database);
        bool locked = db.open();
        for (const QString &statement : begin) {
            QSqlQuery query(db);
            locked = locked && query.exec(statement);
        }
        byte = locked ? 'y' : 'n';
        const bool told = ::write(from_child[1], &byte, 1) == 1;
        ::_exit(told && ::read(to_child[0], &byte, 1) == 0 ? 0 : 1);
    }
    ::close(to_child[0]);
    ::close(from_child[1]);
    EXPECT_EQ(::read(from_child[0], &byte, 1), 1);
    EXPECT_EQ(byte, 'y');
    ::close(from_child[0]);
    pipe_to_child_ = to_child[1];
}

void database_lock::release()
{
    if (pipe_to_child_ < 0)
        return;
    ::close(pipe_to_child_);
    pipe_to_child_ = -1;
    int status = 0;
    EXPECT_EQ(::waitpid(child_, &status, 0), child_);
    EXPECT_EQ(status, 0);
}
