#include "host/findings/run_summary.h"

#include "host/findings/result_reader.h"
#include "log/visible_text.h"
#include "results/database/result_tables.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace host {

namespace {

QString seconds_text(double seconds)
{
    return QString::number(seconds, 'f', 3);
}

QString count_text(const std::optional<qint64> &count, const char *missing)
{
    return count ? QString::number(*count) : QLatin1String(missing);
}

} // namespace

table_counts count_tables(const QString &database)
{
    table_counts counts;
    result_reader results(database);
    counts.problem = results.problem();
    const QStringList tables = results::table_names();
    for (const QString &table : tables) {
        counts.rows.emplace_back(table, results.is_open() ? results.count(table) : std::nullopt);
    }
    return counts;
}

QString text_summary(const result_place &place, const run_report &report,
                     const table_counts &counts, bool is_incomplete, bool with_hints)
{
    const auto line = [](const char *label, const QString &value) {
        return QStringLiteral("%1 %2\n").arg(QLatin1String(label), -16).arg(value);
    };
    QString text;
    QString ended = QStringLiteral("complete");
    if (report.is_partial)
        ended = QStringLiteral("cancelled, the rows so far are kept");
    else if (is_incomplete)
        ended = QStringLiteral("complete, but not all was read");
    text += line("result:", ended);
    text += line("database:", logging::visible_text(place.database));
    if (QFileInfo::exists(place.inventory))
        text += line("inventory:", logging::visible_text(place.inventory));
    text += line("records:", QString::number(report.result.records));
    text += line("seconds:", seconds_text(report.result.seconds));
    text += QStringLiteral("rows in the tables:\n");
    for (const auto &[table, count] : counts.rows)
        text += QStringLiteral("  %1 %2\n").arg(table, -14).arg(count_text(count, "missing"));
    return text + report_text(report, with_hints);
}

QString json_summary(const result_place &place, const run_report &report,
                     const table_counts &counts)
{
    QJsonObject tables;
    for (const auto &[table, count] : counts.rows)
        tables.insert(table, count ? QJsonValue(*count) : QJsonValue());
    QJsonObject content = report_json(report);
    content.insert("schema_version", 1);
    content.insert("database", place.database);
    content.insert("inventory",
                   QFileInfo::exists(place.inventory) ? QJsonValue(place.inventory) : QJsonValue());
    content.insert("state", report.is_partial ? "partial" : "complete");
    content.insert("seconds", report.result.seconds);
    content.insert("tables", tables);
    return QString::fromUtf8(QJsonDocument(content).toJson());
}

} // namespace host
