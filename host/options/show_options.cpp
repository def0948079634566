#include "host/options/show_options.h"

#include "host/options/command_line.h"
#include "results/database/result_tables.h"

#include <QCommandLineParser>

namespace host {

namespace {

constexpr help_text help = {
    "show [options] RESULT_DIR",
    "  plugin_host show /cases/7/results --tables bookmarks,history --limit 20\n"
    "  plugin_host show /cases/7/results --tables transfers --where hostname=web.example.org\n"
    "  plugin_host show /cases/7/results --tables transfers --format csv > transfers.csv\n\n"
    "Exit status: 0 done, 2 wrong usage, 4 no result database that can be read."};

void add_options(QCommandLineParser *parser)
{
    const auto add = [parser](const char *name, const char *text, const char *value,
                              const QString &initial = {}) {
        parser->addOption(
            {QLatin1String(name), QString::fromUtf8(text), QLatin1String(value), initial});
    };
    add("tables",
        "Comma list of tables of the result database or of the inventory (default: those of the "
        "result).",
        "LIST", results::table_names().join(QLatin1Char(',')));
    add("columns",
        "Comma list of columns, or all (default: the telling ones; all for csv and json).", "LIST");
    add("where", "Only rows whose COLUMN is TEXT; repeatable, all must hold.", "COLUMN=TEXT");
    add("limit", "Print at most N rows of each table (default: all).", "N");
    add("timezone", "Show times in this zone, e.g. Europe/Berlin (default: UTC).", "NAME");
    add("format",
        "text: aligned, NULL as \"-\", long texts cut (default); csv: whole texts in quotes, NULL "
        "as nothing; json: "
        "an object for each table.",
        "text|csv|json", QStringLiteral("text"));
    parser->addOption(
        {QStringLiteral("long"),
         QStringLiteral("One value a line, whole (default where lines would wrap).")});
    parser->addOption({QStringLiteral("raw"),
                       QStringLiteral("Values as stored: times as seconds since 1970, csv without "
                                      "marks against formulas and for control characters.")});
    parser->addPositionalArgument(QStringLiteral("RESULT_DIR"),
                                  QStringLiteral("The result directory of an extraction."));
}

// What is wrong with the options; null when nothing is.
QString read(const QCommandLineParser &parser, show_options *options)
{
    const auto text = [&parser](const char *name) { return parser.value(QLatin1String(name)); };
    const auto is_set = [&parser](const char *name) { return parser.isSet(QLatin1String(name)); };
    if (parser.positionalArguments().size() != 1)
        return QStringLiteral("show takes one RESULT_DIR; try 'plugin_host show --help'.");
    options->directory = parser.positionalArguments().constFirst();
    const int form =
        QStringList{QStringLiteral("text"), QStringLiteral("csv"), QStringLiteral("json")}.indexOf(
            text("format"));
    if (form < 0)
        return QStringLiteral("--format takes text, csv or json, not '%1'.").arg(text("format"));
    constexpr show_form forms[] = {show_form::automatic, show_form::csv, show_form::json};
    options->form = is_set("long") && form == 0 ? show_form::one_value_a_line : forms[form];
    bool is_number = true;
    if (is_set("limit"))
        options->limit = text("limit").toLongLong(&is_number);
    if (!is_number || (is_set("limit") && options->limit < 0))
        return QStringLiteral("--limit takes a whole number from 0 on, not '%1'.")
            .arg(text("limit"));
    if (is_set("timezone")) {
        options->style.zone = QTimeZone(text("timezone").toUtf8());
        if (!options->style.zone.isValid())
            return QStringLiteral("--timezone does not know '%1'; it takes names such as "
                                  "Europe/Berlin.")
                .arg(text("timezone"));
    }
    const QStringList conditions = parser.values(QStringLiteral("where"));
    for (const QString &condition : conditions) {
        const int sign = condition.indexOf(QLatin1Char('='));
        if (sign <= 0)
            return QStringLiteral("--where takes COLUMN=TEXT, not '%1'.").arg(condition);
        options->where.append({condition.left(sign), condition.mid(sign + 1)});
    }
    options->style.is_raw = is_set("raw");
    options->tables = comma_list(text("tables"));
    options->columns = comma_list(text("columns"));
    if (is_lost_working_folder({options->directory}))
        return QStringLiteral("the working folder is gone; give absolute paths.");
    return {};
}

} // namespace

std::optional<exit_status> read_show_options(const QStringList &arguments, show_options &options)
{
    QCommandLineParser parser;
    add_options(&parser);
    if (const auto ended = parse(parser, arguments, help))
        return *ended;
    const QString problem = read(parser, &options);
    if (problem.isNull())
        return std::nullopt;
    return report({exit_status::wrong_usage, problem});
}

} // namespace host
