#include "floor.h"

#include <QFile>

#include <sqlite3.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int first_buffer_bytes = 64 * 1024;

struct directory_closer
{
    void operator()(DIR *directory) const { ::closedir(directory); }
};

class floor_run
{
public:
    explicit floor_run(const floor_shape &shape)
        : shape_(shape)
        , suffix_(QFile::encodeName(shape.suffix).toStdString())
        , buffer_(first_buffer_bytes)
    {
    }

    ~floor_run()
    {
        sqlite3_finalize(statement_);
        sqlite3_close(database_);
    }
    floor_run(const floor_run &) = delete;
    floor_run &operator=(const floor_run &) = delete;

    int run()
    {
        const QByteArray path = QFile::encodeName(shape_.database);
        if (sqlite3_open(path.constData(), &database_) != SQLITE_OK ||
            sqlite3_exec(database_, "begin", nullptr, nullptr, nullptr) != SQLITE_OK ||
            sqlite3_prepare_v2(database_, shape_.statement.constData(), -1, &statement_, nullptr) !=
                SQLITE_OK)
            return -1;
        if (!walk(QFile::encodeName(shape_.folder).toStdString()))
            return -1;
        sqlite3_finalize(statement_);
        statement_ = nullptr;
        return sqlite3_exec(database_, "commit", nullptr, nullptr, nullptr) == SQLITE_OK ? rows_
                                                                                         : -1;
    }

private:
    bool walk(const std::string &folder)
    {
        const std::unique_ptr<DIR, directory_closer> directory(::opendir(folder.c_str()));
        if (!directory)
            return false;
        while (const dirent *entry = ::readdir(directory.get())) {
            if (entry->d_name[0] == '.')
                continue;
            const std::string name = entry->d_name;
            if (entry->d_type == DT_DIR ? !walk(folder + name + '/')
                                        : is_list(name) && !take(folder + name))
                return false;
        }
        return true;
    }

    [[nodiscard]] bool is_list(const std::string &name) const
    {
        return name.size() >= suffix_.size() &&
               name.compare(name.size() - suffix_.size(), suffix_.size(), suffix_) == 0;
    }

    bool take(const std::string &path)
    {
        if (!read(path))
            return false;
        for (int i = 0; i < shape_.rows_per_file; ++i) {
            const bool looked = !shape_.copy_of || look_at(shape_.copy_of(path.c_str(), i));
            if (!looked || !insert())
                return false;
        }
        return true;
    }

    static bool look_at(const QByteArray &copy)
    {
        const int descriptor = ::open(copy.constData(), O_RDONLY | O_CLOEXEC);
        if (descriptor < 0)
            return false;
        struct statx status = {};
        char names[1024];
        const bool done =
            ::statx(descriptor, "", AT_EMPTY_PATH, STATX_BASIC_STATS | STATX_BTIME, &status) == 0 &&
            ::flistxattr(descriptor, names, sizeof names) >= 0;
        ::close(descriptor);
        return done;
    }

    bool read(const std::string &path)
    {
        const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (descriptor < 0)
            return false;
        struct stat status = {};
        bool done = ::fstat(descriptor, &status) == 0;
        const auto size = static_cast<size_t>(status.st_size);
        if (size > buffer_.size())
            buffer_.resize(size);
        done = done && ::read(descriptor, buffer_.data(), size) == ssize_t(size);
        ::close(descriptor);
        return done;
    }

    bool insert()
    {
        for (int column = 0; column < shape_.texts.size(); ++column) {
            const QByteArray &text = shape_.texts.at(column);
            sqlite3_bind_text(statement_, column + 1, text.isNull() ? nullptr : text.constData(),
                              text.size(), SQLITE_STATIC);
        }
        const bool inserted = sqlite3_step(statement_) == SQLITE_DONE;
        sqlite3_reset(statement_);
        rows_ += inserted ? 1 : 0;
        return inserted;
    }

    const floor_shape &shape_;
    const std::string suffix_;
    std::vector<char> buffer_;
    sqlite3 *database_ = nullptr;
    sqlite3_stmt *statement_ = nullptr;
    int rows_ = 0;
};

} // namespace

floor_shape floor_like_first_row(const QString &database, const QString &table,
                                 const QList<QByteArray> &columns)
{
    const QByteArray names = columns.join(',');
    const QByteArray into = "insert into " + table.toLatin1() + '(' + names + ") values (?";
    floor_shape shape;
    shape.database = database;
    shape.statement = into + QByteArray(",?").repeated(columns.size() - 1) + ')';
    const QByteArray query = "select " + names + " from " + table.toLatin1() + " limit 1";
    sqlite3 *connection = nullptr;
    sqlite3_stmt *row = nullptr;
    if (sqlite3_open(QFile::encodeName(database).constData(), &connection) == SQLITE_OK &&
        sqlite3_prepare_v2(connection, query.constData(), -1, &row, nullptr) == SQLITE_OK &&
        sqlite3_step(row) == SQLITE_ROW) {
        for (int i = 0; i < columns.size(); ++i) {
            const unsigned char *text = sqlite3_column_text(row, i);
            // Copied with its length: an empty text is not NULL.
            shape.texts.append(text == nullptr ? QByteArray()
                                               : QByteArray(reinterpret_cast<const char *>(text),
                                                            sqlite3_column_bytes(row, i)));
        }
    }
    sqlite3_finalize(row);
    sqlite3_close(connection);
    return shape;
}

int run_floor(const floor_shape &shape)
{
    return floor_run(shape).run();
}
