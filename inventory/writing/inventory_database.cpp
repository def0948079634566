#include "inventory/writing/inventory_database.h"

#include "inventory/writing/inventory_schema.h"
#include "evidence/files/file_names.h"
#include "text/dates/iso_8601.h"

#include <sqlite3.h>

namespace inventory {

namespace {

// A killed run leaves a file under a temporary name, which nobody opens. So nothing is kept twice.
constexpr char for_speed[] = "pragma journal_mode = off; pragma synchronous = off; "
                             "pragma locking_mode = exclusive; pragma cache_size = -8192; "
                             "pragma page_size = 16384;";

struct counted_table
{
    list_kind kind;
    const char *name;
};
constexpr counted_table counted_tables[] = {{list_kind::bookmark, "bookmarks"},
                                            {list_kind::history, "history"},
                                            {list_kind::transfer, "transfers"},
                                            {list_kind::preferences, "preferences"}};

// A row tells its list by the list's path. Of a source that is a home, that is in another column.
constexpr char count_one_table[] =
    "insert into counted select '%1', coalesce(source_count_name, ''), "
    "coalesce(nullif(artifacts_relation_source_file, ''), source_file, ''), count(*) "
    "from result.%2 group by 2, 3";

// Of the sources from ?1 on. A kind whose table was not counted keeps NULL.
constexpr char take_counts[] =
    "update list set rows = of.rows, rows_differ = case "
    "when status = 'read' and entries is not null then of.rows <> entries "
    "when status = 'read' then null else of.rows > 0 end "
    "from (select l.id as list, coalesce(c.rows, 0) as rows from list l "
    "join source s on s.id = l.source "
    "left join counted c on c.path = l.path and c.kind = l.kind and c.count_name = s.count_name "
    "where l.source >= ?1 and l.kind = ?2) of where of.list = list.id";

constexpr size_t values_at_once = 8;

QByteArray insert_of_many()
{
    const QByteArray one(insert_value);
    const QByteArray row = one.mid(one.lastIndexOf('('));
    return one + QByteArray(',' + row).repeated(int(values_at_once) - 1);
}

void bind_value(qint64 list, const stored_value &value, sqlite_statement *statement)
{
    const auto item = value.item < 0 ? std::nullopt : std::optional<qint64>(value.item);
    statement->bind(list)
        .bind(item)
        .bind_utf8(value.path)
        .bind_constant(value.value_class)
        .bind_utf8(value.text)
        .bind(value.bytes)
        .bind_utf8(value.sha256);
}

} // namespace

struct inventory_database::statements
{
    sqlite_statement source;
    sqlite_statement list;
    sqlite_statement value;
    sqlite_statement values; // many at once, which takes less time for each
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
                 statements_->values.prepare(database_, insert_of_many().constData()) &&
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
    if (!check(sqlite3_open_v2(evidence::encoded_name(path).constData(), &database_, how,
                               nullptr) == SQLITE_OK) ||
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
                       .bind_utf8(account.sha256)
                       .bind(status_name(found.status))
                       .bind(found.reason.isEmpty() ? QString() : found.reason)
                       .bind(account.entries)
                       .bind(qint64{account.values_are_whole})
                       .run();
    const std::vector<stored_value> &values = account.values;
    size_t next = 0;
    while (is_done && next < values.size()) {
        const bool are_many = values.size() - next >= values_at_once;
        sqlite_statement &statement = are_many ? statements_->values : statements_->value;
        for (size_t end = next + (are_many ? values_at_once : 1); next < end; ++next)
            bind_value(id, values[next], &statement);
        is_done = statement.run();
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

bool inventory_database::count_rows(const QString &path, int first_source)
{
    // Nothing may be attached inside a transaction.
    if (!execute("commit") || !run_once("attach ? as result", path))
        return false;
    bool is_done = execute("begin") &&
                   execute("create temp table counted(kind text, count_name text, path text, "
                           "rows integer, primary key(kind, count_name, path)) without rowid");
    QStringList counted;
    for (const counted_table &table : counted_tables) {
        const QByteArray statement = QString::fromLatin1(count_one_table)
                                         .arg(kind_name(table.kind), QLatin1String(table.name))
                                         .toUtf8();
        // A plug-in of another make may have no such table or columns.
        if (sqlite3_exec(database_, statement.constData(), nullptr, nullptr, nullptr) == SQLITE_OK)
            counted.append(kind_name(table.kind));
    }
    for (const QString &kind : qAsConst(counted)) {
        sqlite_statement take;
        is_done = is_done && check(take.prepare(database_, take_counts) &&
                                   take.bind(qint64{first_source}).bind(kind).run());
    }
    is_done = is_done && execute("drop table counted");
    return execute("commit") && execute("detach result") && execute("begin") && is_done;
}

bool inventory_database::run_once(const char *text, const QString &parameter)
{
    sqlite_statement statement;
    return check(statement.prepare(database_, text) && statement.bind(parameter).run());
}

bool inventory_database::close()
{
    const bool is_done = execute("commit") && problem_.isEmpty();
    statements_.reset();
    return sqlite3_close(std::exchange(database_, nullptr)) == SQLITE_OK && is_done;
}

} // namespace inventory
