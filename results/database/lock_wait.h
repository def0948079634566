// How long to wait for a database that another process has locked. Qt's driver would wait at every
// statement. Here a wait without success is the last one, until the write lock is got, a row is
// inserted or the host starts another run.
#pragma once

#include <QSqlDatabase>
#include <QSqlError>

namespace results {

class lock_wait
{
public:
    // For a connection that is not open yet.
    void set_before_opening(QSqlDatabase *database) const;
    // For an open one. With `wait` false its statements fail at once.
    void set(QSqlDatabase *database, bool wait) const;
    // Call it with the result of a statement that may have waited. No error: it could write.
    void note(const QSqlError &error);
    // Whether the last wait had no success.
    [[nodiscard]] bool is_spent() const { return is_spent_; }
    // Call it before another run: then the run may wait again.
    void reset() { is_spent_ = false; }

private:
    [[nodiscard]] int allowed_ms() const;

    bool is_spent_ = false;
};

} // namespace results
