#include "host/show_command.h"

#include "host/display/shown_values.h"
#include "host/findings/list_json.h"
#include "host/findings/result_reader.h"
#include "host/options/command_line.h"
#include "host/options/show_options.h"
#include "log/visible_text.h"
#include "results/database/result_tables.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <memory>
#include <numeric>
#include <vector>

#include <sys/ioctl.h>
#include <unistd.h>

namespace host {

namespace {

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

// The columns that are shown. Those that the table does not have go to `unknown`.
QStringList columns_to_show(const show_options &options, const QString &table,
                            const QStringList &existing, QStringList *unknown)
{
    const bool is_for_people = options.form != show_form::csv && options.form != show_form::json;
    QStringList wanted = options.columns;
    if (wanted.isEmpty() && is_for_people && options.form != show_form::one_value_a_line) {
        for (const short_form &form : short_forms) {
            if (table == QLatin1String(form.table))
                wanted = comma_list(QLatin1String(form.columns));
        }
        wanted.erase(
            std::remove_if(wanted.begin(), wanted.end(),
                           [&](const QString &column) { return !existing.contains(column); }),
            wanted.end());
    }
    if (wanted.isEmpty() || wanted == QStringList{QStringLiteral("all")})
        return existing;
    QStringList named = wanted;
    for (const auto &condition : options.where)
        named.append(condition.first);
    for (const QString &column : qAsConst(named)) {
        if (!existing.contains(column))
            unknown->append(column);
    }
    return wanted;
}

// Cut in the middle: both ends of a path matter.
QString cut(const QString &text)
{
    if (text.size() <= widest_cell)
        return text;
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

// Wide enough for every line; the width of no terminal is no bound.
bool would_wrap(const std::vector<QStringList> &lines)
{
    struct winsize size = {};
    if (::isatty(STDOUT_FILENO) == 0 || ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 ||
        size.ws_col == 0)
        return false;
    std::vector<int> widths(static_cast<size_t>(lines.front().size()), 0);
    for (const QStringList &line : lines) {
        for (int i = 0; i < line.size(); ++i)
            widths[size_t(i)] = std::max(widths[size_t(i)], columns_of(line.at(i)) + 2);
    }
    return std::accumulate(widths.begin(), widths.end(), 0) > int(size.ws_col) + 2;
}

void print_one_a_line(const std::vector<QStringList> &lines)
{
    const QStringList &columns = lines.front();
    int widest = 0;
    for (const QString &column : columns)
        widest = std::max(widest, int(column.size()));
    for (size_t row = 1; row < lines.size(); ++row) {
        QString text;
        for (int i = 0; i < columns.size(); ++i)
            text += QStringLiteral("%1  %2\n").arg(columns.at(i), -widest).arg(lines[row].at(i));
        print(text + QLatin1Char('\n'));
    }
}

struct shown_table
{
    QString name;
    QStringList columns;
};

bool show_as_text(result_reader &database, const shown_table &table, const show_options &options)
{
    std::vector<QStringList> lines = {table.columns};
    const bool read = database.for_each_row(
        table.name, table.columns, options.where, options.limit, [&](const QVariantList &row) {
            QStringList line;
            for (int i = 0; i < row.size(); ++i)
                line.append(row.at(i).isValid()
                                ? logging::visible_text(
                                      shown_value(row.at(i), table.columns.at(i), options.style))
                                : QStringLiteral("-"));
            lines.push_back(line);
        });
    const qint64 shown = static_cast<qint64>(lines.size()) - 1;
    const qint64 rows = options.where.isEmpty() ? database.count(table.name).value_or(0) : shown;
    const QString part = shown < rows ? QStringLiteral(", the first %1").arg(shown) : QString();
    print(QStringLiteral("%1: %2 rows%3\n").arg(table.name).arg(rows).arg(part));
    std::vector<QStringList> cut_lines = lines;
    for (size_t i = 1; i < cut_lines.size(); ++i)
        std::transform(cut_lines[i].begin(), cut_lines[i].end(), cut_lines[i].begin(), cut);
    const bool is_long = options.form == show_form::one_value_a_line || would_wrap(cut_lines);
    if (shown > 0 && is_long)
        print_one_a_line(lines);
    else if (shown > 0)
        print_aligned(cut_lines);
    print(QStringLiteral("\n"));
    return read;
}

bool show_as_csv(result_reader &database, const shown_table &table, const show_options &options)
{
    print(table.columns.join(QLatin1Char(',')) + QLatin1Char('\n'));
    return database.for_each_row(
        table.name, table.columns, options.where, options.limit, [&](const QVariantList &row) {
            QStringList fields;
            for (int i = 0; i < row.size(); ++i)
                fields.append(csv_field(row.at(i), table.columns.at(i), options.style));
            print(fields.join(QLatin1Char(',')) + QLatin1Char('\n'));
        });
}

QByteArray json_value(const QVariant &value, const QString &column, const value_style &style)
{
    if (!value.isValid())
        return "null";
    const bool is_number =
        value.type() == QVariant::LongLong && (style.is_raw || !is_time_column(column));
    return is_number
               ? QByteArray::number(value.toLongLong())
               : json_text(style.is_raw ? value.toString() : shown_value(value, column, style));
}

// Columns keep their order.
bool show_as_json(result_reader &database, const shown_table &table, const show_options &options)
{
    print(QString::fromUtf8(json_text(table.name)) + QStringLiteral(": ["));
    bool is_first = true;
    const bool read = database.for_each_row(
        table.name, table.columns, options.where, options.limit, [&](const QVariantList &row) {
            QByteArray text = is_first ? "\n  {" : ",\n  {";
            is_first = false;
            for (int i = 0; i < row.size(); ++i)
                text += (i == 0 ? QByteArray() : QByteArray(", ")) +
                        json_text(table.columns.at(i)) + ": " +
                        json_value(row.at(i), table.columns.at(i), options.style);
            print(QString::fromUtf8(text + '}'));
        });
    print(QStringLiteral("]"));
    return read;
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

namespace {

// The table in the one of the databases that has it.
struct open_databases
{
    std::unique_ptr<result_reader> result;
    std::unique_ptr<result_reader> inventory; // null when there is none

    [[nodiscard]] result_reader *with(const QString &table) const
    {
        if (inventory && result->columns(table).isEmpty())
            return inventory.get();
        return result.get();
    }
};

// Finds the table and the columns that were asked for.
std::optional<failure> find_table(const open_databases &databases, const QString &name,
                                  const show_options &options, shown_table *table)
{
    result_reader *const database = databases.with(name);
    const QStringList existing = database->columns(name);
    if (existing.isEmpty())
        return failure{
            exit_status::wrong_usage,
            QStringLiteral("there is no table %1; there are: %2.")
                .arg(name, (results::table_names() +
                            (databases.inventory ? databases.inventory->tables() : QStringList()))
                               .join(QStringLiteral(", ")))};
    QStringList unknown;
    *table = {name, columns_to_show(options, name, existing, &unknown)};
    if (unknown.isEmpty())
        return std::nullopt;
    return failure{
        exit_status::wrong_usage,
        QStringLiteral("the table %1 has no column %2; it has: %3.")
            .arg(name, unknown.join(QStringLiteral(", ")), existing.join(QStringLiteral(", ")))};
}

bool show_table(const open_databases &databases, const shown_table &table,
                const show_options &options)
{
    auto *show = show_as_text;
    if (options.form == show_form::csv)
        show = show_as_csv;
    else if (options.form == show_form::json)
        show = show_as_json;
    return show(*databases.with(table.name), table, options);
}

} // namespace

exit_status run_show(const QStringList &arguments)
{
    show_options options;
    if (const auto ended = read_show_options(arguments, options))
        return *ended;
    const QString path = find_database(options.directory);
    if (path.isEmpty()) {
        return report({exit_status::result_unusable,
                       QStringLiteral("no result database under %1; give the RESULT_DIR of an "
                                      "extraction.")
                           .arg(options.directory)});
    }
    open_databases databases;
    databases.result = std::make_unique<result_reader>(path);
    if (!databases.result->is_open()) {
        return report({exit_status::result_unusable,
                       QStringLiteral("the result database %1 cannot be read (%2); extract again.")
                           .arg(path, databases.result->problem())});
    }
    const QString inventory = options.directory + QStringLiteral("/inventory.sqlite");
    if (QFileInfo(inventory).isFile())
        databases.inventory = std::make_unique<result_reader>(inventory);
    if (databases.inventory && !databases.inventory->is_open())
        databases.inventory.reset();
    std::vector<shown_table> tables(static_cast<size_t>(options.tables.size()));
    for (size_t i = 0; i < tables.size(); ++i) {
        if (const auto problem =
                find_table(databases, options.tables.at(int(i)), options, &tables[i]))
            return report(*problem);
    }
    const bool is_json = options.form == show_form::json;
    for (const shown_table &table : tables) {
        if (is_json)
            print(&table == &tables.front() ? QStringLiteral("{") : QStringLiteral(",\n"));
        if (!show_table(databases, table, options))
            return report(
                {exit_status::result_unusable,
                 QStringLiteral("the table %1 cannot be read; extract again.").arg(table.name)});
    }
    if (is_json)
        print(QStringLiteral("}\n"));
    return exit_status::done;
}

} // namespace host
