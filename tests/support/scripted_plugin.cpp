// A plug-in library for the tests of plugin_host: it writes down how it was called, one line a
// call, and extracts what the test asks for through its environment:
//   SCRIPTED_LOG     file for the lines
//   SCRIPTED_COUNTS  comma list of record counts to signal
//   SCRIPTED_WAIT    when set, the extraction goes on until it is cancelled
#include "plugin/create_object.h"
#include "plugin/cyberduck.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QThread>

namespace {

constexpr int longest_wait_ms = 30000;

QString database_path;
std::atomic<bool> cancelled{false};

void write_down(const QString &line)
{
    QFile log(QString::fromUtf8(qgetenv("SCRIPTED_LOG")));
    if (log.open(QIODevice::Append))
        log.write(line.toUtf8() + '\n');
}

QString flag(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

} // namespace

cyberduck *create_object()
{
    return new cyberduck;
}

cyberduck::cyberduck(QWidget *parent)
    : QFrame(parent)
{
}
cyberduck::~cyberduck()
{
    write_down(QStringLiteral("destroyed"));
}

void cyberduck::pub_set_engine_type(int t)
{
    write_down(QStringLiteral("engine %1").arg(t));
}
QString cyberduck::pub_get_artifact_name()
{
    return QStringLiteral("Scripted plug-in");
}
void cyberduck::pub_set_essentials()
{
    write_down(QStringLiteral("essentials"));
}
void cyberduck::pub_set_source_count(int n)
{
    write_down(QStringLiteral("count %1").arg(n));
}

void cyberduck::pub_set_ios_uid_backup_pointer(ios_uid_backup_parser *)
{
    write_down(QStringLiteral("backup pointer"));
}

void cyberduck::pub_set_desktop_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_desktop_info)
{
    write_down(QStringLiteral("desktop"));
}

void cyberduck::pub_set_general_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info g)
{
    write_down(QStringLiteral("general %1 %2 %3 %4")
                   .arg(flag(g.debug_mode_status), flag(g.debug_print_on_terminal),
                        flag(g.debug_print_in_file), flag(g.debug_encryption_status)));
}

void cyberduck::pub_set_source_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info s)
{
    QStringList accounts;
    for (const auto &account : qAsConst(s.system_account_QList))
        accounts.append(account.system_user + QLatin1Char(':') + account.domain_user);
    write_down(QStringLiteral("source %1|%2|%3|%4|%5")
                   .arg(s.fs_extraction_source_path, s.source_type_internal, s.os_scheme_display,
                        s.os_scheme_internal, accounts.join(QLatin1Char(','))));
}

void cyberduck::pub_set_essential_for_haldo_bench_extraction(QStringList tabs, QStringList)
{
    write_down(QStringLiteral("tabs ") + tabs.join(QLatin1Char(',')));
}

void cyberduck::pub_set_result_directory(QString dir)
{
    write_down(QStringLiteral("results"));
    const QString folder = dir + QStringLiteral("/Artifacts_Result/Scripted_plug-in/");
    QDir().mkpath(folder);
    database_path = folder + QStringLiteral("Scripted_plug-in.sqlite");
}

void cyberduck::pub_create_db_tables()
{
    write_down(QStringLiteral("create"));
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    db.setDatabaseName(database_path);
    db.open();
    QSqlQuery(QStringLiteral("create table if not exists bookmarks(INT integer primary key, "
                             "nickname text, comment text)"));
    QSqlQuery(QStringLiteral("insert into bookmarks(nickname, comment) values('a\nb', null)"));
    QSqlQuery(QStringLiteral("insert into bookmarks(nickname, comment) values('\"c\"', '')"));
    db.close();
}

void cyberduck::pub_set_clear_db(bool clear)
{
    write_down(QStringLiteral("clear ") + flag(clear));
}
void cyberduck::pub_cancel_extraction()
{
    cancelled = true;
}
void cyberduck::pub_find_source_file()
{
    write_down(QStringLiteral("find"));
}

void cyberduck::pub_set_extended_attributes_list(QStringList attrs)
{
    write_down(QStringLiteral("attributes ") + attrs.join(QLatin1Char(',')));
}

void cyberduck::pub_extract_artifacts()
{
    write_down(QStringLiteral("extract"));
    const QStringList counts =
        QString::fromUtf8(qgetenv("SCRIPTED_COUNTS")).split(QLatin1Char(','));
    for (const QString &count : counts) {
        if (!cancelled)
            Q_EMIT signal_extracted_records_of_plugin_overall(count.toLongLong());
    }
    QElapsedTimer timer;
    timer.start();
    while (qEnvironmentVariableIsSet("SCRIPTED_WAIT") && !cancelled &&
           timer.elapsed() < longest_wait_ms)
        QThread::msleep(5);
    Q_EMIT signal_tab_processed_of_plugin_overall(1);
}

void cyberduck::pub_generate_chat_html_pages()
{
    write_down(QStringLiteral("chats"));
}
void cyberduck::pub_remove_temporary_asthetics()
{
    write_down(QStringLiteral("remove"));
}

void cyberduck::slot_extracted_records_of_plugin(qint64) {}
void cyberduck::slot_total_tabs_processed(int) {}
void cyberduck::slot_m_process_finished(int) {}
