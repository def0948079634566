#include "host/options/extract_options.h"

#include "host/options/command_line.h"
#include "inventory/layouts/source_layout.h"
#include "results/database/result_tables.h"

#include <QCommandLineParser>
#include <QDir>
#include <QThread>

#include <algorithm>
#include <limits>

namespace host {

namespace {

constexpr int most_jobs = 8;

constexpr help_text help = {
    "extract [options] SOURCE... RESULT_DIR",
    "  plugin_host extract --account alice --account bob:EXAMPLE --tabs bookmarks,history \\\n"
    "      /mnt/image /cases/7/results\n\n"
    "Exit status: 0 complete, 1 complete but lists were skipped or failed, or rows are missing "
    "(the\n"
    "summary names them), 2 wrong usage, 3 source missing, unusable, or nothing found, 4 result\n"
    "directory, debug log or standard output not writable, or an earlier result is there, 5 the\n"
    "plug-in cannot be loaded, 130 cancelled with the rows so far kept."};

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
    add("layout", "NAME",
        "What a SOURCE is, instead of the first that fits: volume, system-volume, backup, home, "
        "client-folder, users-folder, collection or list-file.");
    add("scheme", "NAME", "Kind of system: macOS (default), iOS_UID or winOS.", "macOS");
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
    add("engine", "N", "Engine type: 0 (default), 1 or 2.", "0");
    add("source-count", "N",
        "Number of the first source in the case (default: 1, with --append the next free one).");
    add("debug-log", "FILE", "Append the debug log to FILE.");
    add_flag("encipher-log", "Encipher the lines of the debug log's file.");
    add_flag("debug-terminal", "Print the debug log on standard error.");
    add_flag("append", "Keep the rows of an earlier result and add to them.");
    add_flag("force", "Replace an earlier result.");
    add_flag("dry-run", "Only say what would be read, as scan does. Writes nothing.");
    add_flag("no-inventory",
             "Do not write inventory.sqlite, the independent account of every list and value.");
    add("jobs", "N",
        "Threads that read lists for the inventory (default: one for each processor, at most 8).");
    add("case", "TEXT", "Name of the case, for run.json.");
    add("evidence", "TEXT", "Name of the piece of evidence, for run.json.");
    add("examiner", "TEXT", "Who examines, for run.json.");
    add("notes", "TEXT", "Anything else, for run.json.");
    add("cancel-after", "N", "Cancel once N records were reported.");
    add("progress", "auto|always|never",
        "Progress on standard error: a bar on a terminal, "
        "otherwise at most a line a second; always: a bar; "
        "never: nothing.",
        "auto");
    add("format", "text|json", "Form of the summary on standard output (default: text).", "text");
    parser.addOption(
        {{QStringLiteral("q"), QStringLiteral("quiet")}, QStringLiteral("No progress, no hints.")});
    parser.addOption({{QStringLiteral("v"), QStringLiteral("verbose")},
                      QStringLiteral("Name every list without rows, not only the first 20.")});
    parser.addPositionalArgument(QStringLiteral("SOURCE"),
                                 QStringLiteral("What is examined: a mounted volume, a home, a "
                                                "backup, a collection of files, or lists of the "
                                                "client. Nothing in it is changed."),
                                 QStringLiteral("SOURCE..."));
    parser.addPositionalArgument(QStringLiteral("RESULT_DIR"),
                                 QStringLiteral("Folder for the results; made when missing. It "
                                                "gets Artifacts_Result/Cyberduck/"
                                                "Cyberduck.sqlite, inventory.sqlite and "
                                                "run.json."));
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

    void check_known(const char *name, const QStringList &known)
    {
        if (!known.contains(text(name)))
            refuse(QStringLiteral("--%1 takes %2, not '%3'.")
                       .arg(QLatin1String(name), known.join(QStringLiteral(", ")), text(name)));
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
    if (positional.size() < 2 || positional.contains(QString())) {
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

    options.command_line = QStringList{QStringLiteral("plugin_host")} + arguments;
    option_reader reader(parser);
    check_arguments(parser.positionalArguments(), reader);
    options.sources = parser.positionalArguments();
    options.result_directory = options.sources.isEmpty() ? QString() : options.sources.takeLast();
    options.layout = reader.text("layout");
    if (!options.layout.isEmpty() && !inventory::layout_names().contains(options.layout))
        reader.refuse(
            QStringLiteral("--layout takes %1, not '%2'.")
                .arg(inventory::layout_names().join(QStringLiteral(", ")), options.layout));
    options.plugin_file = reader.text("plugin");
    options.scheme = reader.text("scheme");
    reader.check_known(
        "scheme", {QStringLiteral("macOS"), QStringLiteral("iOS_UID"), QStringLiteral("winOS")});
    options.os_display = reader.text("os-display");
    options.source_type = reader.text("source-type");
    options.accounts = read_accounts(parser.values(QStringLiteral("account")), reader);
    options.tabs = read_tabs(reader);
    options.attributes = comma_list(reader.text("attributes"));
    reader.check_known("engine", {QStringLiteral("0"), QStringLiteral("1"), QStringLiteral("2")});
    options.engine = reader.text("engine").toInt();
    if (reader.flag("source-count"))
        options.source_count = reader.whole_number<int>("source-count", 1);
    options.jobs = reader.flag("jobs") ? reader.whole_number<int>("jobs", 1)
                                       : std::clamp(QThread::idealThreadCount(), 1, most_jobs);
    options.jobs = std::min(options.jobs, most_jobs);
    if (reader.flag("cancel-after"))
        options.cancel_after = reader.whole_number<qint64>("cancel-after", 1);
    options.debug_log = reader.text("debug-log");
    options.encipher_log = reader.flag("encipher-log");
    options.debug_terminal = reader.flag("debug-terminal");
    options.append = reader.flag("append");
    options.force = reader.flag("force");
    if (options.append && options.force)
        reader.refuse(QStringLiteral("--append and --force exclude each other."));
    options.dry_run = reader.flag("dry-run");
    options.takes_inventory = !reader.flag("no-inventory");
    options.case_name = reader.text("case");
    options.evidence_name = reader.text("evidence");
    options.examiner = reader.text("examiner");
    options.notes = reader.text("notes");
    options.is_quiet = reader.flag("quiet");
    options.is_verbose = reader.flag("verbose");
    options.progress =
        static_cast<progress_mode>(reader.choice("progress", {"auto", "always", "never"}));
    options.json = reader.choice("format", {"text", "json"}) == 1;
    // Nothing but the document.
    if (options.progress == progress_mode::automatic && (options.is_quiet || options.json))
        options.progress = progress_mode::never;
    if (is_lost_working_folder(options.sources +
                               QStringList{options.result_directory, options.debug_log}))
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
