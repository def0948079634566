#include "inventory/writing/sqlite_statement.h"

#include "text/stored_text.h"

#include <sqlite3.h>

namespace inventory {

sqlite_statement::~sqlite_statement()
{
    sqlite3_finalize(statement_);
}

bool sqlite_statement::prepare(sqlite3 *database, const char *text)
{
    return sqlite3_prepare_v3(database, text, -1, SQLITE_PREPARE_PERSISTENT, &statement_,
                              nullptr) == SQLITE_OK;
}

sqlite_statement &sqlite_statement::bind(const QString &text)
{
    const QByteArray utf8 = text::stored_utf8(text);
    const int result = utf8.isNull() ? SQLITE_OK
                                     : sqlite3_bind_text(statement_, next_, utf8.constData(),
                                                         utf8.size(), SQLITE_TRANSIENT);
    return bound(result);
}

sqlite_statement &sqlite_statement::bind_utf8(const QByteArray &text)
{
    const int result = text.isNull() ? SQLITE_OK
                                     : sqlite3_bind_text(statement_, next_, text.constData(),
                                                         text.size(), SQLITE_STATIC);
    return bound(result);
}

sqlite_statement &sqlite_statement::bind_constant(const char *text)
{
    return bound(sqlite3_bind_text(statement_, next_, text, -1, SQLITE_STATIC));
}

sqlite_statement &sqlite_statement::bind(const std::optional<qint64> &number)
{
    return bound(number ? sqlite3_bind_int64(statement_, next_, *number) : SQLITE_OK);
}

// What is not bound is NULL.
sqlite_statement &sqlite_statement::bound(int result)
{
    ++next_;
    is_bound_ = is_bound_ && result == SQLITE_OK;
    return *this;
}

bool sqlite_statement::run()
{
    const bool is_done = is_bound_ && sqlite3_step(statement_) == SQLITE_DONE;
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
    next_ = 1;
    is_bound_ = true;
    return is_done;
}

} // namespace inventory
