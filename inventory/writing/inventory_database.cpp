#include "inventory/writing/inventory_database.h"

#include "inventory/writing/inventory_schema.h"
#include "evidence/files/file_names.h"
#include "text/dates/iso_8601.h"

#include <QFile>

#include <sqlite3.h>

namespace inventory {

namespace {

// A killed run leaves a file under a temporary name, which nobody opens. So nothing is kept twice.
constexpr char for_speed[] = "pragma journal_mode = off; pragma synchronous = off; "
                             "pragma locking_mode = exclusive; pragma cache_size = -8192;";

// The list's rows by source and file. A cancelled run may have none of them.
constexpr char count_all_rows[] = R"(
create temp table counted(kind text, count_name text, path text, rows integer);
insert into counted
    select 'bookmark', source_count_name, source_file, count(*) from result.bookmarks group by 2, 3
    union all
    select 'history', source_count_name, source_file, count(*) from result.history group by 2, 3
    union all
    select 'transfer', source_count_name, source_file, count(*) from result.transfers group by 2, 3
    union all
    select 'preferences', source_count_name, source_file, count(*) from result.preferences
        group by 2, 3;
create index temp.counted_by_path on counted(path, kind, count_name);
update list set rows = coalesce((select c.rows from counted c join source s on s.id = list.source
    where c.path = list.path and c.kind = list.kind and c.count_name is s.count_name), 0);
update list set rows_differ = case
    when status = 'read' and entries is not null then rows <> entries
    when status = 'read' then null
    else rows > 0 end;
drop table counted;
)";

} // namespace

struct inventory_database::statements
{
    sqlite_statement source;
    sqlite_statement list;
    sqlite_statement value;
    sqlite_statement note;
    sqlite_statement place;
};

inventory_database::inventory_database() = default;

inventory_database::~inventory_database()
{
    statements_.reset();
    sqlite3_close(database_);
}

bool inventory_database::check(bool is_done)
{
    if (!is_done && problem_.isEmpty())
        problem_ = QString::fromUtf8(sqlite3_errmsg(database_));
    return is_done;
}

bool inventory_database::execute(const char *text)
{
    return check(sqlite3_exec(database_, text, nullptr, nullptr, nullptr) == SQLITE_OK);
}

bool inventory_database::prepare()
{
    statements_ = std::make_unique<statements>();
    return check(statements_->source.prepare(database_, insert_source) &&
                 statements_->list.prepare(database_, insert_list) &&
                 statements_->value.prepare(database_, insert_value) &&
                 statements_->note.prepare(database_, insert_note) &&
                 statements_->place.prepare(database_, insert_place));
}

std::optional<qint64> inventory_database::number_of(const char *query)
{
    sqlite3_stmt *statement = nullptr;
    std::optional<qint64> number;
    if (sqlite3_prepare_v2(database_, query, -1, &statement, nullptr) == SQLITE_OK &&
        sqlite3_step(statement) == SQLITE_ROW)
        number = sqlite3_column_int64(statement, 0);
    sqlite3_finalize(statement);
    return number;
}

bool inventory_database::open(const QString &path, bool is_there)
{
    const int how = is_there ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    if (!check(sqlite3_open_v2(QFile::encodeName(path).constData(), &database_, how, nullptr) ==
               SQLITE_OK) ||
        !execute(for_speed))
        return false;
    if (is_there) {
        const bool is_ours = number_of("pragma application_id") == application_id &&
                             number_of("pragma user_version") == schema_version;
        if (!is_ours) {
            problem_ = QStringLiteral("it is no inventory of this program's version");
            return false;
        }
    } else {
        const QByteArray marks = "pragma application_id = " + QByteArray::number(application_id) +
                                 "; pragma user_version = " + QByteArray::number(schema_version);
        if (!execute(marks.constData()) || !execute(schema))
            return false;
    }
    last_list_ = number_of("select max(id) from list").value_or(0);
    return execute("begin") && prepare();
}

int inventory_database::last_source()
{
    return static_cast<int>(number_of("select max(id) from source").value_or(0));
}

bool inventory_database::add_source(const source_facts &source)
{
    return check(statements_->source.bind(qint64{source.number})
                     .bind(source.path)
                     .bind(source.layout)
                     .bind(source.root)
                     .bind(source.os_version)
                     .bind(source.volume_name)
                     .bind(source.volume_uuid)
                     .bind(source.count_name)
                     .run());
}

bool inventory_database::add_list(int source, const list_account &account)
{
    const found_list &found = account.list;
    const auto &file = account.file;
    const qint64 id = ++last_list_;
    const auto size = file ? std::optional<qint64>(file->size) : std::nullopt;
    const evidence::file_times times = file ? file->times : evidence::file_times();
    bool is_done = statements_->list.bind(id)
                       .bind(qint64{source})
                       .bind(found.user)
                       .bind(kind_name(found.kind))
                       .bind(found.place)
                       .bind(found.path)
                       .bind(evidence::decoded_name(found.real_path))
                       .bind(size)
                       .bind(text::iso_8601_utc_of_ms(times.modified_ms))
                       .bind(text::iso_8601_utc_of_ms(times.born_ms))
                       .bind_ascii(account.sha256)
                       .bind(status_name(found.status))
                       .bind(found.reason.isEmpty() ? QString() : found.reason)
                       .bind(account.entries)
                       .bind(qint64{account.values_are_whole})
                       .run();
    for (const stored_value &value : account.values) {
        const auto item = value.item < 0 ? std::nullopt : std::optional<qint64>(value.item);
        is_done = is_done && statements_->value.bind(id)
                                 .bind(item)
                                 .bind(value.path)
                                 .bind_constant(value.value_class)
                                 .bind(value.text)
                                 .bind(value.bytes)
                                 .bind_ascii(value.sha256)
                                 .run();
    }
    return check(is_done);
}

bool inventory_database::add_note(int source, const found_note &note)
{
    return check(statements_->note.bind(qint64{source})
                     .bind(note.user)
                     .bind(note.path)
                     .bind(note.text)
                     .bind(note.target)
                     .bind(qint64{note.is_failure})
                     .run());
}

bool inventory_database::add_place(int source, const searched_place &place)
{
    return check(statements_->place.bind(qint64{source})
                     .bind(place.user)
                     .bind(kind_name(place.kind))
                     .bind(place.name)
                     .bind(place.shown)
                     .run());
}

bool inventory_database::count_rows(const QString &path)
{
    // Nothing may be attached inside a transaction.
    sqlite_statement attach;
    if (!execute("commit") || !check(attach.prepare(database_, "attach ? as result")) ||
        !check(attach.bind(path).run()))
        return false;
    const bool is_done = execute("begin") && execute(count_all_rows) && execute("commit");
    return execute("detach result") && execute("begin") && is_done;
}

bool inventory_database::close()
{
    const bool is_done = execute("commit") && problem_.isEmpty();
    statements_.reset();
    return sqlite3_close(std::exchange(database_, nullptr)) == SQLITE_OK && is_done;
}

} // namespace inventory
