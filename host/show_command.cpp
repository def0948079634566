#include "host/show_command.h"

#include "host/options/command_line.h"
#include "host/findings/result_reader.h"
#include "log/visible_text.h"
#include "results/database/result_tables.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <vector>

namespace host {

namespace {

constexpr help_text help = {
    "show [options] RESULT_DIR",
    "  plugin_host show /cases/7/results --tables bookmarks,history --limit 20\n"
    "  plugin_host show /cases/7/results --tables transfers --format csv > transfers.csv\n\n"
    "Exit status: 0 done, 2 wrong usage, 4 no result database that can be read."};

constexpr int widest_cell = 48; // characters; a longer text is cut in the aligned form

// The most useful columns that fit on a screen side by side.
struct short_form
{
    const char *table;
    const char *columns;
};
constexpr short_form short_forms[] = {
    {results::bookmarks_table,
     "INT,system_user,nickname,protocol,hostname,port,username,access_timestamp"},
    {results::history_table, "INT,system_user,protocol,hostname,port,username,access_timestamp"},
    {results::transfers_table,
     "INT,system_user,file_name,transfer_type,hostname,file_exist,file_size,local_path"},
    {results::preferences_table, "INT,system_user,key,value"},
    {results::export_table, "INT,record,table_name,filepath"},
};

struct show_options
{
    QString directory;
    QStringList tables;
    QStringList columns; // empty: the short form, or all of them for CSV
    qint64 limit = -1;   // rows of each table; negative: all
    bool csv = false;
};

std::optional<exit_status> read_show_options(const QStringList &arguments, show_options &options)
{
    QCommandLineParser parser;
    parser.addOption({QStringLiteral("tables"),
                      QStringLiteral("Comma list of tables (default: all)."),
                      QStringLiteral("LIST"), results::table_names().join(QLatin1Char(','))});
    parser.addOption({QStringLiteral("columns"),
                      QStringLiteral("Comma list of columns, or all (default: the telling ones; "
                                     "all for csv)."),
                      QStringLiteral("LIST")});
    parser.addOption({QStringLiteral("limit"),
                      QStringLiteral("Print at most N rows of each table (default: all)."),
                      QStringLiteral("N")});
    parser.addOption({QStringLiteral("format"),
                      QStringLiteral("text: aligned, NULL as \"-\", long texts cut (default); csv: "
                                     "whole texts in quotes, NULL as nothing."),
                      QStringLiteral("text|csv"), QStringLiteral("text")});
    parser.addPositionalArgument(QStringLiteral("RESULT_DIR"),
                                 QStringLiteral("The result directory of an extraction."));
    if (const auto ended = parse(parser, arguments, help))
        return ended;

    const auto refused = [](const QString &problem) {
        return report({exit_status::wrong_usage, problem});
    };
    if (parser.positionalArguments().size() != 1)
        return refused(QStringLiteral("show takes one RESULT_DIR; try 'plugin_host show --help'."));
    const QString format = parser.value(QStringLiteral("format"));
    if (format != QLatin1String("text") && format != QLatin1String("csv"))
        return refused(QStringLiteral("--format takes text or csv, not '%1'.").arg(format));
    bool is_number = true;
    if (parser.isSet(QStringLiteral("limit")))
        options.limit = parser.value(QStringLiteral("limit")).toLongLong(&is_number);
    if (!is_number || (parser.isSet(QStringLiteral("limit")) && options.limit < 0))
        return refused(QStringLiteral("--limit takes a whole number from 0 on, not '%1'.")
                           .arg(parser.value(QStringLiteral("limit"))));
    options.directory = parser.positionalArguments().constFirst();
    options.tables = comma_list(parser.value(QStringLiteral("tables")));
    options.columns = comma_list(parser.value(QStringLiteral("columns")));
    options.csv = format == QLatin1String("csv");
    return std::nullopt;
}

QStringList columns_to_show(const show_options &options, const QString &table,
                            const QStringList &existing)
{
    QStringList wanted = options.columns;
    if (wanted.isEmpty() && !options.csv) {
        for (const short_form &form : short_forms) {
            if (table == QLatin1String(form.table))
                wanted = comma_list(QLatin1String(form.columns));
        }
    }
    if (wanted.isEmpty() || wanted == QStringList{QStringLiteral("all")})
        return existing;
    QStringList shown;
    for (const QString &column : qAsConst(wanted)) {
        if (existing.contains(column))
            shown.append(column);
    }
    return shown;
}

// A NUL would end the text for most readers.
QString shown_text(const QVariant &value)
{
    return value.toString().replace(QChar(0), QChar(0x2400));
}

QString cell_text(const QVariant &value)
{
    if (!value.isValid())
        return QStringLiteral("-");
    const QString text = logging::visible_text(shown_text(value));
    if (text.size() <= widest_cell)
        return text;
    // Cut in the middle: both ends of a path matter.
    constexpr int kept = (widest_cell - 1) / 2;
    return text.left(kept) + QChar(0x2026) + text.right(kept);
}

// On a terminal. An accent may be a mark of its own, which takes no column. East Asian characters
// take two.
int columns_of(const QString &text)
{
    int columns = 0;
    for (const QChar character : text) {
        const ushort code = character.unicode();
        if (character.category() == QChar::Mark_NonSpacing || character.isLowSurrogate())
            continue;
        const bool is_wide =
            (code >= 0x1100 && code <= 0x115f) || (code >= 0x2e80 && code <= 0xa4cf) ||
            (code >= 0xac00 && code <= 0xd7a3) || (code >= 0xd83c && code <= 0xd83e) // pictures
            || (code >= 0xf900 && code <= 0xfaff) || (code >= 0xfe30 && code <= 0xfe6f) ||
            (code >= 0xff00 && code <= 0xff60);
        columns += is_wide ? 2 : 1;
    }
    return columns;
}

void print_aligned(const std::vector<QStringList> &lines)
{
    QVector<int> widths(lines.front().size(), 0);
    for (const QStringList &line : lines) {
        for (int i = 0; i < line.size(); ++i)
            widths[i] = std::max(widths[i], columns_of(line.at(i)));
    }
    for (const QStringList &line : lines) {
        QString text;
        for (int i = 0; i < line.size(); ++i) {
            text +=
                line.at(i) + QString(widths.at(i) - columns_of(line.at(i)) + 2, QLatin1Char(' '));
        }
        while (text.endsWith(QLatin1Char(' ')))
            text.chop(1);
        print(text + QLatin1Char('\n'));
    }
}

bool show_as_text(result_reader &database, const QString &table, const QStringList &columns,
                  qint64 limit)
{
    const qint64 rows = database.count(table).value_or(0);
    std::vector<QStringList> lines = {columns};
    const bool read =
        database.for_each_row(table, columns, limit, [&lines](const QVariantList &row) {
            QStringList line;
            for (const QVariant &value : row)
                line.append(cell_text(value));
            lines.push_back(line);
        });
    const qint64 shown = static_cast<qint64>(lines.size()) - 1;
    const QString part = shown < rows ? QStringLiteral(", the first %1").arg(shown) : QString();
    print(QStringLiteral("%1: %2 rows%3\n").arg(table).arg(rows).arg(part));
    if (shown > 0)
        print_aligned(lines);
    print(QStringLiteral("\n"));
    return read;
}

// NULL is shown as nothing, an empty text as a pair of quotes.
QString csv_field(const QVariant &value)
{
    if (!value.isValid())
        return {};
    return QLatin1Char('"') + shown_text(value).replace(QLatin1Char('"'), QLatin1String("\"\"")) +
           QLatin1Char('"');
}

bool show_as_csv(result_reader &database, const QString &table, const QStringList &columns,
                 qint64 limit)
{
    print(columns.join(QLatin1Char(',')) + QLatin1Char('\n'));
    return database.for_each_row(table, columns, limit, [](const QVariantList &row) {
        QStringList fields;
        for (const QVariant &value : row)
            fields.append(csv_field(value));
        print(fields.join(QLatin1Char(',')) + QLatin1Char('\n'));
    });
}

// Each plug-in has a folder below Artifacts_Result with a database of the same name in it.
QString find_database(const QString &directory)
{
    const QDir results(directory + QStringLiteral("/Artifacts_Result"));
    const QStringList names = results.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString &name : names) {
        QString path = results.filePath(name + QLatin1Char('/') + name + QStringLiteral(".sqlite"));
        if (QFileInfo(path).isFile())
            return path;
    }
    return {};
}

} // namespace

exit_status run_show(const QStringList &arguments)
{
    show_options options;
    if (const auto ended = read_show_options(arguments, options))
        return *ended;
    if (is_lost_working_folder({options.directory}))
        return report({exit_status::wrong_usage,
                       QStringLiteral("the working folder is gone; give absolute paths.")});
    const QString path = find_database(options.directory);
    if (path.isEmpty()) {
        return report({exit_status::result_unusable,
                       QStringLiteral("no result database under %1; give the RESULT_DIR of an "
                                      "extraction.")
                           .arg(options.directory)});
    }
    result_reader database(path);
    if (!database.is_open()) {
        return report({exit_status::result_unusable,
                       QStringLiteral("the result database %1 cannot be read (%2); extract again.")
                           .arg(path, database.problem())});
    }
    for (const QString &table : qAsConst(options.tables)) {
        const QStringList existing = database.columns(table);
        const QStringList columns = columns_to_show(options, table, existing);
        if (columns.isEmpty()) {
            return report({exit_status::wrong_usage,
                           QStringLiteral("the result database has no such table or columns: %1; "
                                          "check --tables and --columns.")
                               .arg(table)});
        }
        const auto show = options.csv ? show_as_csv : show_as_text;
        if (!show(database, table, columns, options.limit)) {
            return report({exit_status::result_unusable,
                           QStringLiteral("the table %1 of %2 cannot be read; extract again.")
                               .arg(table, path)});
        }
    }
    return exit_status::done;
}

} // namespace host
