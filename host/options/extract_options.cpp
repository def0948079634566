#include "host/options/extract_options.h"

#include "host/options/command_line.h"
#include "results/database/result_tables.h"

#include <QCommandLineParser>
#include <QDir>

#include <limits>

namespace host {

namespace {

constexpr help_text help = {
    "extract [options] SOURCE RESULT_DIR",
    "  plugin_host extract --account alice --account bob:EXAMPLE --tabs bookmarks,history \\\n"
    "      /mnt/image /cases/7/results\n\n"
    "Exit status: 0 done, 1 done but lists or rows are missing (standard error names them), 2 "
    "wrong\n"
    "usage, 3 source missing or unusable, 4 result directory, debug log or standard output not\n"
    "writable, 5 the plug-in cannot be loaded, 130 cancelled with the rows so far kept."};

void add_options(QCommandLineParser &parser)
{
    const auto add = [&parser](const char *name, const char *value, const char *text,
                               const char *initial = "") {
        parser.addOption({QLatin1String(name), QString::fromUtf8(text), QLatin1String(value),
                          QLatin1String(initial)});
    };
    const auto add_flag = [&parser](const char *name, const char *text) {
        parser.addOption({QLatin1String(name), QString::fromUtf8(text)});
    };
    add("plugin", "FILE",
        "The plug-in library (default: the one built or installed beside the "
        "program).");
    add("scheme", "NAME", "Kind of system: macOS (default), iOS_UID, winOS, or any text.", "macOS");
    add("os-display", "TEXT", "The system's name as stored in every row (default: macOS).",
        "macOS");
    add("source-type", "TEXT",
        "macOS_Image (default) or another text; macOS_Home_Directory marks "
        "a single home folder.",
        "macOS_Image");
    add("account", "USER[:DOMAIN]",
        "A user account of the source; repeatable. Default: every "
        "folder directly under SOURCE/Users except \"Shared\" and "
        "names that begin with a dot.");
    add("tabs", "LIST",
        "Comma list of what to extract (default: "
        "bookmarks,history,transfers,preferences).",
        "bookmarks,history,transfers,preferences");
    add("attributes", "LIST",
        "Comma list of further Spotlight attributes to collect (default: "
        "none).");
    add("engine", "N", "Engine type; 0 (default), 1 and 2 extract.", "0");
    add("source-count", "N", "Number of the source in the case (default: 1).", "1");
    add("debug-log", "FILE", "Append the debug log to FILE.");
    add_flag("encipher-log", "Encipher the lines of the debug log's file.");
    add_flag("debug-terminal", "Print the debug log on standard error.");
    add_flag("append",
             "Keep the rows of an earlier run (default: a new database takes the place of "
             "an earlier one).");
    add("cancel-after", "N", "Cancel once N records were reported.");
    add("progress", "auto|always|never",
        "Progress on standard error: a bar on a terminal, "
        "otherwise at most a line a second; always: a bar; "
        "never: nothing.",
        "auto");
    add("format", "text|json", "Form of the summary on standard output (default: text).", "text");
    parser.addPositionalArgument(QStringLiteral("SOURCE"),
                                 QStringLiteral("Folder at which the examined file system is "
                                                "reachable; it holds Users/. Nothing in it is "
                                                "changed."));
    parser.addPositionalArgument(QStringLiteral("RESULT_DIR"),
                                 QStringLiteral("Folder for the results; made when missing. The "
                                                "database is Artifacts_Result/Cyberduck/"
                                                "Cyberduck.sqlite in it."));
}

// Keeps the first problem.
class option_reader
{
public:
    explicit option_reader(const QCommandLineParser &parser)
        : parser_(parser)
    {
    }

    [[nodiscard]] QString text(const char *name) const
    {
        return parser_.value(QLatin1String(name));
    }

    [[nodiscard]] bool flag(const char *name) const { return parser_.isSet(QLatin1String(name)); }

    template <typename number> [[nodiscard]] number whole_number(const char *name, qint64 least)
    {
        bool is_number = false;
        const qint64 value = text(name).toLongLong(&is_number);
        if (!is_number || value < least || value > std::numeric_limits<number>::max()) {
            refuse(QStringLiteral("--%1 takes a whole number%2, not '%3'.")
                       .arg(QLatin1String(name),
                            least == 1 ? QStringLiteral(" from 1 on") : QString(), text(name)));
            return 0;
        }
        return static_cast<number>(value);
    }

    // The index of the value in `choices`.
    template <size_t count>
    [[nodiscard]] int choice(const char *name, const char *const (&choices)[count])
    {
        QStringList names;
        for (const char *one : choices)
            names.append(QLatin1String(one));
        const int index = names.indexOf(text(name));
        if (index < 0) {
            refuse(QStringLiteral("--%1 takes %2, not '%3'.")
                       .arg(QLatin1String(name), names.join(QStringLiteral(" or ")), text(name)));
        }
        return index;
    }

    void refuse(const QString &problem)
    {
        if (problem_.isEmpty())
            problem_ = problem;
    }

    [[nodiscard]] const QString &problem() const { return problem_; }

private:
    const QCommandLineParser &parser_;
    QString problem_;
};

QList<account> read_accounts(const QStringList &texts, option_reader &reader)
{
    QList<account> accounts;
    for (const QString &text : texts) {
        const int colon = text.indexOf(QLatin1Char(':'));
        const account one = {text.left(colon), colon < 0 ? QString() : text.mid(colon + 1)};
        // The name becomes a part of paths on the source.
        if (one.system_user.isEmpty() || one.system_user.contains(QLatin1Char('/')) ||
            one.system_user == QLatin1String(".") || one.system_user == QLatin1String("..")) {
            reader.refuse(QStringLiteral("--account takes the name of a folder under SOURCE/Users, "
                                         "as USER or USER:DOMAIN, not '%1'.")
                              .arg(text));
        }
        accounts.append(one);
    }
    return accounts;
}

QStringList read_tabs(option_reader &reader)
{
    // The plug-in puts the names into its statements, so other texts are refused.
    const QStringList known = results::table_names();
    QStringList tabs = comma_list(reader.text("tabs"));
    for (const QString &tab : qAsConst(tabs)) {
        if (!known.contains(tab)) {
            reader.refuse(QStringLiteral("--tabs does not know '%1'; it takes a comma list of %2.")
                              .arg(tab, known.join(QStringLiteral(", "))));
        }
    }
    return tabs;
}

void check_arguments(const QStringList &positional, option_reader &reader)
{
    if (positional.size() != 2 || positional.contains(QString())) {
        reader.refuse(QStringLiteral("extract takes a SOURCE and a RESULT_DIR, not %1; try "
                                     "'plugin_host extract --help'.")
                          .arg(positional.isEmpty() ? QStringLiteral("nothing")
                                                    : positional.join(QStringLiteral(" "))));
    }
}

} // namespace

std::optional<exit_status> read_extract_options(const QStringList &arguments,
                                                extract_options &options)
{
    QCommandLineParser parser;
    add_options(parser);
    if (const auto ended = parse(parser, arguments, help))
        return ended;

    option_reader reader(parser);
    check_arguments(parser.positionalArguments(), reader);
    options.source = parser.positionalArguments().value(0);
    options.result_directory = parser.positionalArguments().value(1);
    options.plugin_file = reader.text("plugin");
    options.scheme = reader.text("scheme");
    options.os_display = reader.text("os-display");
    options.source_type = reader.text("source-type");
    options.accounts = read_accounts(parser.values(QStringLiteral("account")), reader);
    options.tabs = read_tabs(reader);
    options.attributes = comma_list(reader.text("attributes"));
    options.engine = reader.whole_number<int>("engine", std::numeric_limits<int>::min());
    options.source_count =
        reader.whole_number<int>("source-count", std::numeric_limits<int>::min());
    if (reader.flag("cancel-after"))
        options.cancel_after = reader.whole_number<qint64>("cancel-after", 1);
    options.debug_log = reader.text("debug-log");
    options.encipher_log = reader.flag("encipher-log");
    options.debug_terminal = reader.flag("debug-terminal");
    options.append = reader.flag("append");
    options.progress =
        static_cast<progress_mode>(reader.choice("progress", {"auto", "always", "never"}));
    options.json = reader.choice("format", {"text", "json"}) == 1;
    if (is_lost_working_folder({options.source, options.result_directory, options.debug_log}))
        reader.refuse(QStringLiteral("the working folder is gone; give absolute paths."));
    if (options.encipher_log && options.debug_log.isEmpty())
        reader.refuse(QStringLiteral("--encipher-log needs --debug-log FILE."));
    if (!reader.problem().isEmpty())
        return report({exit_status::wrong_usage, reader.problem()});
    if (!options.debug_log.isEmpty())
        options.debug_log = QDir::current().absoluteFilePath(options.debug_log);
    return std::nullopt;
}

} // namespace host
