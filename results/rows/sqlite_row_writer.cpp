#include "results/rows/sqlite_row_writer.h"

#include "text/stored_text.h"

#include <QSqlDriver>
#include <QSqlError>
#include <QVariant>

#include <sqlite3.h>

namespace results {

namespace {

thread_local sqlite3 *last_opened = nullptr;

int note_opened(sqlite3 *connection, char **, const sqlite3_api_routines *)
{
    last_opened = connection;
    return SQLITE_OK;
}

sqlite3 *handle_of(const QSqlDatabase &database)
{
    const QVariant handle = database.driver()->handle();
    if (qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3 *const *>(handle.constData());
}

// Copies a text of ASCII; false for any other.
bool narrow(const QString &text, QByteArray *bytes)
{
    bytes->resize(text.size());
    char *to = bytes->data();
    ushort all_bits = 0;
    for (const QChar unit : text) {
        all_bits |= unit.unicode();
        *to++ = static_cast<char>(unit.unicode());
    }
    return all_bits < 0x80;
}

} // namespace

bool open_seeing_connection(QSqlDatabase *database, sqlite3 **connection)
{
    // SQLite reports each connection that it opens. Another copy of it reports its own only.
    const auto entry = reinterpret_cast<void (*)()>(note_opened);
    last_opened = nullptr;
    sqlite3_auto_extension(entry);
    const bool opened = database->open();
    sqlite3_cancel_auto_extension(entry);
    const bool is_shared = opened && last_opened != nullptr && handle_of(*database) == last_opened;
    *connection = is_shared ? last_opened : nullptr;
    return opened;
}

sqlite_row_writer::sqlite_row_writer(const QSqlDatabase &database, sqlite3 *connection,
                                     const char *statement)
    : database_(database)
    , connection_(connection)
    , statement_text_(QLatin1String(statement))
{
    prepare();
}

sqlite_row_writer::~sqlite_row_writer()
{
    const bool kept_open = statement_ != nullptr && !database_.isOpen();
    sqlite3_finalize(statement_);
    if (kept_open)
        sqlite3_close(connection_);
}

bool sqlite_row_writer::prepare()
{
    if (!database_.isOpen()) {
        error_text_ = database_.lastError().text();
        return false;
    }
    return sqlite3_prepare_v2(connection_, statement_text_.toUtf8().constData(), -1, &statement_,
                              nullptr) == SQLITE_OK ||
           fail("Unable to execute statement");
}

bool sqlite_row_writer::insert(const QString *const *values, int count)
{
    if (statement_ == nullptr && !prepare())
        return false;
    bound_.resize(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        if (!bind(i, *values[i]))
            return fail("Unable to bind parameters");
    }
    const int result = sqlite3_step(statement_);
    const bool inserted = result == SQLITE_DONE || fail("Unable to fetch row");
    sqlite3_reset(statement_);
    return inserted;
}

bool sqlite_row_writer::bind(int index, const QString &text)
{
    bound_text &bound = bound_[static_cast<size_t>(index)];
    if (bound.is_bound && is_same_object(bound.text, text))
        return true;
    bound.text = text;
    int result = SQLITE_OK;
    if (text.isNull()) {
        result = sqlite3_bind_null(statement_, index + 1);
    } else {
        if (!narrow(text, &bound.utf8))
            bound.utf8 = text::stored_utf8(text);
        result = sqlite3_bind_text(statement_, index + 1, bound.utf8.constData(), bound.utf8.size(),
                                   SQLITE_STATIC);
    }
    bound.is_bound = result == SQLITE_OK;
    return bound.is_bound;
}

bool sqlite_row_writer::fail(const char *what_failed)
{
    const auto *message = static_cast<const char16_t *>(sqlite3_errmsg16(connection_));
    error_text_ = QString::fromUtf16(message) + QLatin1Char(' ') + QLatin1String(what_failed);
    return false;
}

} // namespace results
