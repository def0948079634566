#include "host/findings/run_summary.h"

#include "host/options/command_line.h"
#include "host/findings/result_reader.h"
#include "log/visible_text.h"
#include "results/database/result_tables.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace host {

namespace {

QString seconds_text(double seconds)
{
    return QString::number(seconds, 'f', 3);
}

// Uses Qt's writer for single texts only: it would sort the keys of an object.
QString json_text(const QString &text)
{
    const QByteArray list = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(list.mid(1, list.size() - 2));
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

QString text_summary(const QString &database, const run_result &result, const table_counts &counts,
                     qint64 failures)
{
    const auto line = [](const char *label, const QString &value) {
        return QStringLiteral("%1 %2\n").arg(QLatin1String(label), -16).arg(value);
    };
    QString text;
    QString ended = QStringLiteral("done");
    if (result.cancelled)
        ended = QStringLiteral("cancelled, the rows so far are kept");
    else if (failures > 0)
        ended = QStringLiteral("done, but not all was read: %1 warnings").arg(failures);
    text += line("result:", ended);
    text += line("database:", logging::visible_text(database));
    text += line("records:", QString::number(result.records));
    text += line("tabs:", QString::number(result.tabs));
    text += line("seconds:", seconds_text(result.seconds));
    text += QStringLiteral("rows in the tables:\n");
    for (const auto &[table, count] : counts.rows)
        text += QStringLiteral("  %1 %2\n").arg(table, -14).arg(count_text(count, "missing"));
    return text;
}

QString json_summary(const QString &database, const run_result &result, const table_counts &counts)
{
    QStringList tables;
    for (const auto &[table, count] : counts.rows)
        tables.append(json_text(table) + QStringLiteral(": ") + count_text(count, "null"));
    // Joined and not filled in with arg(), because the path may hold a "%1".
    return QStringLiteral("{\"database\": ") + json_text(database) +
           QStringLiteral(", \"records\": %1, \"tabs\": %2, \"cancelled\": %3, \"seconds\": %4")
               .arg(result.records)
               .arg(result.tabs)
               .arg(result.cancelled ? QStringLiteral("true") : QStringLiteral("false"),
                    seconds_text(result.seconds)) +
           QStringLiteral(", \"tables\": {") + tables.join(QStringLiteral(", ")) +
           QStringLiteral("}}\n");
}

} // namespace host
