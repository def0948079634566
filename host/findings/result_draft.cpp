#include "host/findings/result_draft.h"

#include "evidence/access/descriptor.h"
#include "evidence/files/file_names.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>

#include <fcntl.h>
#include <sys/file.h>

#include <cstdio>

namespace host {

namespace {

constexpr char folder_prefix[] = ".plugin_host_draft_";

failure unusable(const QString &message)
{
    return {exit_status::result_unusable, message};
}

// Closes itself.
class connection
{
public:
    connection(const QString &path, int flags)
    {
        status_ = sqlite3_open_v2(path.toUtf8().constData(), &handle_, flags, nullptr);
    }
    ~connection() { sqlite3_close(handle_); }
    connection(const connection &) = delete;
    connection &operator=(const connection &) = delete;

    [[nodiscard]] sqlite3 *handle() const { return handle_; }
    int execute(const char *statement)
    {
        if (status_ == SQLITE_OK)
            status_ = sqlite3_exec(handle_, statement, nullptr, nullptr, nullptr);
        return status_;
    }

private:
    sqlite3 *handle_ = nullptr;
    int status_ = SQLITE_OK;
};

bool copy_database(const QString &from, const QString &to)
{
    const connection source(from, SQLITE_OPEN_READONLY);
    const connection target(to, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    sqlite3_backup *backup = sqlite3_backup_init(target.handle(), "main", source.handle(), "main");
    if (backup == nullptr)
        return false;
    sqlite3_backup_step(backup, -1);
    return sqlite3_backup_finish(backup) == SQLITE_OK;
}

bool move(const QString &from, const QString &to)
{
    return std::rename(evidence::encoded_name(from).constData(),
                       evidence::encoded_name(to).constData()) == 0;
}

bool lock(const evidence::descriptor &folder)
{
    return folder.is_open() && ::flock(folder.get(), LOCK_EX | LOCK_NB) == 0;
}

evidence::descriptor open_folder(const QString &path)
{
    return evidence::descriptor(
        ::open(evidence::encoded_name(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

} // namespace

// A run holds the lock of its folder. A folder whose lock is free was left by a run that was
// killed.
class result_draft::locked_folder
{
public:
    explicit locked_folder(const QString &directory)
    {
        remove_abandoned(directory);
        QByteArray path =
            evidence::encoded_name(directory + QLatin1Char('/')) + folder_prefix + "XXXXXX";
        if (::mkdtemp(path.data()) == nullptr)
            return;
        path_ = evidence::decoded_name(path);
        lock_ = open_folder(path_);
        lock(lock_);
    }
    ~locked_folder()
    {
        if (!path_.isEmpty())
            QDir(path_).removeRecursively();
    }
    locked_folder(const locked_folder &) = delete;
    locked_folder &operator=(const locked_folder &) = delete;

    [[nodiscard]] const QString &path() const { return path_; }

private:
    static void remove_abandoned(const QString &directory)
    {
        const QDir all(directory);
        const QStringList names = all.entryList({QLatin1String(folder_prefix) + QLatin1Char('*')},
                                                QDir::Dirs | QDir::Hidden | QDir::NoSymLinks);
        for (const QString &name : names) {
            if (lock(open_folder(all.filePath(name))))
                QDir(all.filePath(name)).removeRecursively();
        }
    }

    QString path_;
    evidence::descriptor lock_;
};

result_draft::result_draft(const result_place &place)
    : place_(place)
{
}

result_draft::~result_draft() = default;

QString result_draft::directory() const
{
    return folder_->path();
}

QString result_draft::inventory() const
{
    return folder_->path() + place_.inventory.mid(place_.directory.size());
}

QString result_draft::log() const
{
    return folder_->path() + QStringLiteral("/log");
}

QString result_draft::database() const
{
    return folder_->path() + place_.database.mid(place_.directory.size());
}

// Opening it for writing and closing it also brings it to a state without files beside it, which
// would be taken for those of the new database.
std::optional<failure> result_draft::check_old_database() const
{
    if (!QFileInfo::exists(place_.database))
        return std::nullopt;
    int status = SQLITE_OK;
    {
        connection old(place_.database, SQLITE_OPEN_READWRITE);
        sqlite3_busy_timeout(old.handle(), 1000);
        status = old.execute("begin immediate");
        if (status == SQLITE_OK)
            status = old.execute("rollback");
    }
    if (status == SQLITE_BUSY || status == SQLITE_LOCKED)
        return unusable(QStringLiteral("another program has locked the result database %1; close "
                                       "it and run again.")
                            .arg(place_.database));
    for (const char *suffix : {"-wal", "-journal"}) {
        if (QFileInfo::exists(place_.database + QLatin1String(suffix)))
            status = SQLITE_ERROR;
    }
    if (status == SQLITE_OK)
        return std::nullopt;
    return unusable(QStringLiteral("the result database %1 cannot be read or replaced; move it "
                                   "away or give another RESULT_DIR.")
                        .arg(place_.database));
}

std::optional<failure> result_draft::begin(bool append)
{
    if (const auto problem = check_old_database())
        return problem;
    folder_ = std::make_unique<locked_folder>(place_.directory);
    const bool made = !folder_->path().isEmpty() && QDir().mkpath(QFileInfo(database()).path());
    const auto copied = [append](const QString &from, const QString &to) {
        return !append || !QFileInfo::exists(from) || copy_database(from, to);
    };
    if (made && copied(place_.database, database()) && copied(place_.inventory, inventory()))
        return std::nullopt;
    return unusable(QStringLiteral("cannot prepare a new database in the result directory %1; give "
                                   "a RESULT_DIR that can be written and has room.")
                        .arg(place_.directory));
}

std::optional<failure> result_draft::finish(bool is_partial)
{
    if (!QFileInfo::exists(database()))
        return std::nullopt; // nothing was made: the old result stays
    if (const auto problem = check_old_database())
        return problem;
    const QString mark = place_.database + QStringLiteral(".partial");
    bool done = QDir().mkpath(QFileInfo(place_.database).path());
    if (is_partial) {
        QFile file(mark);
        done = done && file.open(QIODevice::WriteOnly) &&
               file.write("The run was cancelled: rows are missing.\n") > 0 && file.flush();
    }
    // Without a new one, the old one would speak of other rows. It goes first: a run that is killed
    // here leaves an inventory that promises too much, not one that knows less than the tables.
    if (QFileInfo::exists(inventory()))
        done = done && move(inventory(), place_.inventory);
    else
        QFile::remove(place_.inventory);
    done = done && move(database(), place_.database);
    if (done && !is_partial)
        QFile::remove(mark);
    if (done)
        return std::nullopt;
    return unusable(QStringLiteral("the new database cannot be put at %1; the old result is as it "
                                   "was.")
                        .arg(place_.database));
}

} // namespace host
