#include "host/findings/run_report.h"

#include "inventory/reading/sha256.h"
#include "log/visible_text.h"
#include "results/database/result_tables.h"
#include "text/dates/iso_8601.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTimeZone>

#include <sqlite3.h>

#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <tuple>

namespace host {

namespace {

constexpr int schema_version = 1;
constexpr char connection_name[] = "run_report";

struct timed_table
{
    const char *table;
    const char *time_column; // seconds since 1970; null when its rows have no time
};
constexpr timed_table timed_tables[] = {
    {results::bookmarks_table, "access_timestamp"},
    {results::history_table, "access_timestamp"},
    {results::transfers_table, "transfer_timestamp"},
    {results::preferences_table, nullptr},
};

// A read-only connection to one database, closed with this object.
class read_connection
{
public:
    explicit read_connection(const QString &path)
        : connection_(
              QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QLatin1String(connection_name)))
    {
        connection_.setDatabaseName(path);
        connection_.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        is_open_ = QFileInfo(path).isFile() && connection_.open();
    }
    ~read_connection()
    {
        connection_.close();
        connection_ = {};
        QSqlDatabase::removeDatabase(QLatin1String(connection_name));
    }
    read_connection(const read_connection &) = delete;
    read_connection &operator=(const read_connection &) = delete;

    [[nodiscard]] bool is_open() const { return is_open_; }

    // Hands over each row. False on a failure.
    template <typename Take> bool for_each(const QString &statement, Take take) const
    {
        if (!is_open_)
            return false;
        QSqlQuery query(connection_);
        query.setForwardOnly(true);
        if (!query.exec(statement)) {
            problem_ = query.lastError().text().simplified();
            return false;
        }
        while (query.next())
            take(query);
        return true;
    }

    [[nodiscard]] const QString &problem() const { return problem_; }

private:
    QSqlDatabase connection_;
    bool is_open_ = false;
    mutable QString problem_;
};

using account_key = std::tuple<int, QString, int>; // source, user, tab

int tab_index(const QString &tab)
{
    const auto *const found =
        std::find_if(std::begin(timed_tables), std::end(timed_tables),
                     [&](const timed_table &one) { return tab == QLatin1String(one.table); });
    return int(found - std::begin(timed_tables));
}

QString tab_of_kind(const QString &kind)
{
    for (const timed_table &one : timed_tables) {
        if (QLatin1String(one.table) == kind || QLatin1String(one.table) == kind + QLatin1Char('s'))
            return QLatin1String(one.table);
    }
    return kind;
}

class reporter
{
public:
    explicit reporter(const report_request &request)
        : request_(request)
    {
    }

    void read_inventory()
    {
        const read_connection inventory(request_.inventory);
        if (!inventory.is_open())
            return;
        has_inventory_ = true;
        count_lists(inventory);
        name_lists_without_rows(inventory);
        give_hints(inventory);
        report_.problem = inventory.problem();
    }

    void read_rows()
    {
        const read_connection database(request_.database);
        for (const timed_table &one : timed_tables) {
            const QString time = one.time_column == nullptr
                                     ? QStringLiteral("null")
                                     : QStringLiteral("nullif(cast(%1 as integer), 0)")
                                           .arg(QLatin1String(one.time_column));
            database.for_each(
                QStringLiteral("select substr(source_count_name, 7), system_user, count(*), "
                               "min(%1), max(%1) from %2 group by 1, 2")
                    .arg(time, QLatin1String(one.table)),
                [&](const QSqlQuery &row) {
                    if (row.value(0).toInt() < request_.first_source)
                        return;
                    tab_account &account =
                        at(row.value(0).toInt(), row.value(1).toString(), QLatin1String(one.table));
                    account.rows = row.value(2).toLongLong();
                    const auto shown = [&](int column) {
                        return row.isNull(column)
                                   ? QString()
                                   : text::iso_8601_utc(row.value(column).toDouble());
                    };
                    account.oldest = shown(3);
                    account.newest = shown(4);
                });
        }
    }

    run_report take()
    {
        for (auto &[key, account] : accounts_)
            report_.tabs.push_back(account);
        return std::move(report_);
    }

private:
    tab_account &at(int source, const QString &user, const QString &tab)
    {
        tab_account &account = accounts_[{source, user, tab_index(tab)}];
        account.source = source;
        account.user = user;
        account.tab = tab;
        if (has_inventory_ && !account.found)
            account.found = 0;
        return account;
    }

    void count_lists(const read_connection &inventory)
    {
        inventory.for_each(
            QStringLiteral("select source, user, kind, count(*), sum(status = 'read'), "
                           "sum(status = 'skipped'), sum(status = 'failed') from list "
                           "where source >= %1 group by 1, 2, 3")
                .arg(request_.first_source),
            [&](const QSqlQuery &row) {
                tab_account &account = at(row.value(0).toInt(), row.value(1).toString(),
                                          tab_of_kind(row.value(2).toString()));
                account.found = row.value(3).toLongLong();
                account.read = row.value(4).toLongLong();
                account.skipped = row.value(5).toLongLong();
                account.failed = row.value(6).toLongLong();
            });
    }

    // Lists whose tab was asked for.
    [[nodiscard]] QString asked_for() const
    {
        QStringList kinds;
        for (const QString &tab : request_.tabs) {
            const bool is_plural = tab == QLatin1String(results::bookmarks_table) ||
                                   tab == QLatin1String(results::transfers_table);
            kinds.append(QLatin1Char('\'') + (is_plural ? tab.chopped(1) : tab) +
                         QLatin1Char('\''));
        }
        return QStringLiteral("source >= %1 and kind in (%2)")
            .arg(request_.first_source)
            .arg(kinds.join(QLatin1Char(',')));
    }

    void name_lists_without_rows(const read_connection &inventory)
    {
        inventory.for_each(
            QStringLiteral("select count(*), sum(status <> 'read' or rows_differ = 1) from list "
                           "where (rows is null or rows = 0 or rows_differ = 1) and ") +
                asked_for(),
            [&](const QSqlQuery &row) {
                report_.without_rows_count = row.value(0).toLongLong();
                report_.incomplete_lists = row.value(1).toLongLong();
            });
        inventory.for_each(
            QStringLiteral("select path, status, coalesce(reason, case when rows_differ = 1 then "
                           "'its rows are other than it promises' else 'it holds nothing for its "
                           "table' end) from list where (rows is null or rows = 0 or rows_differ = "
                           "1) and %1 order by status, id limit %2")
                .arg(asked_for())
                .arg(request_.most_lists),
            [&](const QSqlQuery &row) {
                report_.without_rows.push_back(
                    {row.value(0).toString(), row.value(1).toString(), row.value(2).toString()});
            });
    }

    void give_hints(const read_connection &inventory)
    {
        inventory.for_each(
            QStringLiteral("select user, place, count(*) from list where status = 'skipped' and "
                           "reason like 'the older folder exists_%' and source >= %1 group by 1, 2")
                .arg(request_.first_source),
            [&](const QSqlQuery &row) {
                report_.hints.append(QStringLiteral("%1: %2 lists in the %3 are not in the tables")
                                         .arg(row.value(0).toString())
                                         .arg(row.value(2).toLongLong())
                                         .arg(row.value(1).toString()));
            });
        inventory.for_each(
            QStringLiteral("select path, text, target from note where failure = 1 and source >= %2 "
                           "limit %1")
                .arg(request_.most_lists)
                .arg(request_.first_source),
            [&](const QSqlQuery &row) {
                const QString target = row.value(2).toString();
                report_.hints.append(
                    row.value(0).toString() + QStringLiteral(": ") + row.value(1).toString() +
                    (target.isEmpty() ? QString() : QStringLiteral(", to ") + target));
            });
        inventory.for_each(
            QStringLiteral("select count(*) from note where failure = 1 and source >= %1")
                .arg(request_.first_source),
            [&](const QSqlQuery &row) { report_.incomplete_lists += row.value(0).toLongLong(); });
        inventory.for_each(
            QStringLiteral("select path from source where layout in ('users-folder', 'home', "
                           "'client-folder', 'list-file') and id >= %1 order by id")
                .arg(request_.first_source),
            [&](const QSqlQuery &row) {
                report_.hints.append(
                    QStringLiteral("%1: local copies were not collected, so none is "
                                   "looked for")
                        .arg(row.value(0).toString()));
            });
    }

    const report_request &request_;
    bool has_inventory_ = false;
    std::map<account_key, tab_account> accounts_;
    run_report report_;
};

QString utc_text(const QDateTime &time)
{
    return time.toUTC().toString(Qt::ISODateWithMs);
}

QJsonValue hash_of(const QString &path)
{
    const QByteArray digits = inventory::sha256_of_file(path);
    return digits.isEmpty() ? QJsonValue() : QJsonValue(QString::fromLatin1(digits));
}

QString host_name()
{
    utsname system = {};
    return ::uname(&system) == 0 ? QString::fromLocal8Bit(system.nodename) : QString();
}

QJsonArray sources_json(const described_run &run)
{
    QJsonArray all;
    for (size_t i = 0; i < run.sources->size(); ++i) {
        const run_source &source = (*run.sources)[i];
        QJsonArray users;
        for (const account &one : source.accounts)
            users.append(one.system_user);
        QJsonArray copies;
        const source_view &view = (*run.views)[i];
        for (const copied_list &copy : view.copies)
            copies.append(QJsonObject{{"from", copy.from},
                                      {"to", copy.to},
                                      {"sha256", QString::fromLatin1(copy.sha256)}});
        QJsonObject one = {{"number", source.number},
                           {"path", source.layout.path},
                           {"layout", source.layout.layout},
                           {"root", source.layout.root},
                           {"shown_root", source.layout.shown_root},
                           {"users", users}};
        if (!view.root.isEmpty()) {
            one.insert("view", view.root);
            one.insert("copied_lists", copies);
        }
        all.append(one);
    }
    return all;
}

QJsonObject description_of(const described_run &run)
{
    const extract_options &options = *run.options;
    return {{"schema_version", schema_version},
            {"state", "partial"},
            {"program", QStringLiteral("plugin_host " PLUGIN_HOST_VERSION)},
            {"qt", QLatin1String(qVersion())},
            {"sqlite", QLatin1String(sqlite3_libversion())},
            {"command_line", QJsonArray::fromStringList(options.command_line)},
            {"host", host_name()},
            {"user", QString::fromLocal8Bit(qgetenv("USER"))},
            {"user_id", int(::geteuid())},
            {"time_zone", QString::fromLatin1(QTimeZone::systemTimeZoneId())},
            {"started", utc_text(run.started)},
            {"case", options.case_name},
            {"evidence", options.evidence_name},
            {"examiner", options.examiner},
            {"notes", options.notes},
            {"tabs", QJsonArray::fromStringList(options.tabs)},
            {"sources", sources_json(run)}};
}

std::optional<failure> write_json(const QString &path, const QJsonObject &content)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(content).toJson()) > 0 &&
        file.commit())
        return std::nullopt;
    return failure{exit_status::result_unusable,
                   QStringLiteral("cannot write %1; give a RESULT_DIR that can be written and has "
                                  "room.")
                       .arg(path)};
}

// What earlier runs into the same databases left in run.json.
QJsonArray earlier_runs(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QJsonObject before = QJsonDocument::fromJson(file.readAll()).object();
    QJsonArray runs = before.take("earlier_runs").toArray();
    if (before.value("state").toString() != QLatin1String("running"))
        runs.append(before);
    return runs;
}

} // namespace

run_report report_of(const report_request &request)
{
    reporter reading(request);
    reading.read_inventory();
    reading.read_rows();
    return reading.take();
}

int highest_source(const QString &path)
{
    const read_connection database(path);
    int highest = 0;
    for (const timed_table &one : timed_tables) {
        database.for_each(
            QStringLiteral("select max(cast(substr(source_count_name, 7) as integer)) from %1")
                .arg(QLatin1String(one.table)),
            [&](const QSqlQuery &row) { highest = std::max(highest, row.value(0).toInt()); });
    }
    return highest;
}

std::optional<failure> write_running(const result_place &place, const described_run &run)
{
    QJsonObject content = description_of(run);
    if (run.options->append)
        content.insert("earlier_runs", earlier_runs(place.run_account));
    return write_json(place.run_account, content);
}

std::optional<failure> write_ended(const result_place &place, const described_run &run,
                                   const run_report &report)
{
    QJsonObject content = description_of(run);
    QFile before(place.run_account);
    if (run.options->append && before.open(QIODevice::ReadOnly))
        content.insert("earlier_runs",
                       QJsonDocument::fromJson(before.readAll()).object().value("earlier_runs"));
    before.close();
    content.insert("state", report.is_partial ? "partial" : "complete");
    content.insert("ended", utc_text(QDateTime::currentDateTimeUtc()));
    content.insert("plug_in_interface", "cyberduck, 18 operations");
    content.insert("counts", report_json(report));
    const QString folder = place.directory.endsWith(QLatin1Char('/'))
                               ? place.directory
                               : place.directory + QLatin1Char('/');
    QJsonObject files;
    for (const QString &path : {place.database, place.inventory}) {
        if (QFileInfo::exists(path))
            files.insert(path.mid(folder.size()), hash_of(path));
    }
    content.insert("files", files);
    if (!run.options->debug_log.isEmpty())
        content.insert("debug_log", QJsonObject{{"path", run.options->debug_log},
                                                {"sha256", hash_of(run.options->debug_log)}});
    return write_json(place.run_account, content);
}

QString report_text(const run_report &report, bool with_hints)
{
    QString text;
    int source = 0;
    QString user;
    for (const tab_account &one : report.tabs) {
        if (one.source != source || one.user != user)
            text += QStringLiteral("source %1, %2:\n  %3  found   read skipped failed     rows  "
                                   "oldest                newest\n")
                        .arg(one.source)
                        .arg(logging::visible_text(one.user))
                        .arg(QString(), -11);
        source = one.source;
        user = one.user;
        const auto number = [](const std::optional<qint64> &count, int width) {
            return (count ? QString::number(*count) : QStringLiteral("-")).rightJustified(width);
        };
        text += QStringLiteral("  %1%2%3%4%5%6")
                    .arg(one.tab, -11)
                    .arg(number(one.found, 7), number(one.read, 7), number(one.skipped, 8),
                         number(one.failed, 7), number(one.rows, 9));
        if (!one.oldest.isNull())
            text += QStringLiteral("  %1  %2").arg(one.oldest, -20).arg(one.newest);
        text += QLatin1Char('\n');
    }
    if (!report.without_rows.empty())
        text += QStringLiteral("lists without rows:\n");
    for (const list_without_rows &list : report.without_rows)
        text += QStringLiteral("  %1: %2: %3\n")
                    .arg(list.status, logging::visible_text(list.path), list.reason);
    const qint64 more = report.without_rows_count - qint64(report.without_rows.size());
    if (more > 0)
        text +=
            QStringLiteral("  and %1 more: see the table \"list\" of inventory.sqlite\n").arg(more);
    if (with_hints && !report.hints.isEmpty()) {
        text += QStringLiteral("worth knowing:\n");
        for (const QString &hint : report.hints)
            text += QStringLiteral("  %1\n").arg(logging::visible_text(hint));
    }
    return text;
}

QJsonObject report_json(const run_report &report)
{
    const auto text_or_null = [](const QString &text) {
        return text.isNull() ? QJsonValue() : QJsonValue(text);
    };
    QJsonArray tabs;
    for (const tab_account &one : report.tabs) {
        tabs.append(QJsonObject{{"source", one.source},
                                {"user", one.user},
                                {"tab", one.tab},
                                {"found", one.found ? QJsonValue(*one.found) : QJsonValue()},
                                {"read", one.read},
                                {"skipped", one.skipped},
                                {"failed", one.failed},
                                {"rows", one.rows},
                                {"oldest", text_or_null(one.oldest)},
                                {"newest", text_or_null(one.newest)}});
    }
    QJsonArray lists;
    for (const list_without_rows &list : report.without_rows)
        lists.append(
            QJsonObject{{"path", list.path}, {"status", list.status}, {"reason", list.reason}});
    return {{"records", report.result.records},
            {"by_user_and_tab", tabs},
            {"lists_without_rows", lists},
            {"lists_without_rows_count", report.without_rows_count},
            {"hints", QJsonArray::fromStringList(report.hints)}};
}

} // namespace host
