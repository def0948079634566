// How long a database that another process has locked is waited for. Qt's driver would wait five
// seconds at every statement; here a wait that was in vain is the last one, until rows are
// committed again or the host starts another run.
#pragma once

#include <QSqlDatabase>
#include <QSqlError>

namespace support {

// For a connection that is not open yet.
void wait_as_allowed(QSqlDatabase *database);
// For an open one. With `wait` false its statements fail at once.
void set_wait(QSqlDatabase *database, bool wait);
// To be told how a statement that may have waited ended; no error means that it wrote.
void note_wait(const QSqlError &error);

} // namespace support
