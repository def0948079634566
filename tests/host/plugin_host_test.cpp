// Runs the program as a user does, with a plug-in that writes down how it is called.
#include "tests/fixtures/printing.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <sqlite3.h>
#include <sys/stat.h>

#include <csignal>
#include <vector>

#include <unistd.h>

#define OLD_DATABASE "Artifacts_Result/Scripted_plug-in/Scripted_plug-in.sqlite"

namespace {

struct outcome
{
    int status;
    QString out;
    QString err;
};

class plugin_host : public ::testing::Test
{
protected:
    plugin_host()
    {
        environment_.insert(QStringLiteral("SCRIPTED_LOG"), path("calls"));
        environment_.insert(QStringLiteral("SCRIPTED_COUNTS"), QStringLiteral("0,3,7"));
        environment_.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
        environment_.remove(QStringLiteral("QT_QPA_PLATFORM"));
        environment_.remove(QStringLiteral("DISPLAY"));
        environment_.remove(QStringLiteral("XDG_RUNTIME_DIR"));
        for (const char *folder : {"src/Users/zoë/Library/Preferences", "src/Users/anna b",
                                   "src/Users/Shared", "src/Users/.hidden", "elsewhere"})
            QDir().mkpath(path(folder));
        write("src/Users/zoë/Library/Preferences/ch.sudo.cyberduck.plist",
              "<plist><dict><key>uses</key><string>7</string></dict></plist>");
        write("src/Users/file", "");
        write("note", "no library");
    }

    // "@" stands for the test's own folder.
    [[nodiscard]] QString path(const char *relative) const
    {
        return folder_.path() + QLatin1Char('/') + QString::fromUtf8(relative);
    }

    void write(const char *relative, const char *content)
    {
        QFile file(path(relative));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    void start(QProcess &process, const QString &arguments)
    {
        QStringList list;
        const QStringList parts = arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        for (QString part : parts)
            list.append(part.replace(QLatin1Char('@'), folder_.path()));
        process.setProcessEnvironment(environment_);
        process.start(QStringLiteral(PLUGIN_HOST), list);
        ASSERT_TRUE(process.waitForStarted());
    }

    static outcome finish(QProcess &process)
    {
        process.waitForFinished(60000);
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
                QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    outcome run(const QString &arguments)
    {
        QProcess process;
        start(process, arguments);
        return finish(process);
    }

    outcome extract(const QString &arguments)
    {
        return run(QStringLiteral("extract --plugin " SCRIPTED_PLUGIN " ") + arguments);
    }

    [[nodiscard]] QString calls() const
    {
        QFile file(path("calls"));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    [[nodiscard]] bool wait_for_call(const QString &call) const
    {
        QElapsedTimer timer;
        timer.start();
        while (!calls().contains(call) && timer.elapsed() < 30000)
            QThread::msleep(5);
        return calls().contains(call);
    }

    QTemporaryDir folder_;
    QProcessEnvironment environment_ = QProcessEnvironment::systemEnvironment();
};

struct refusal
{
    const char *name;
    const char *arguments;
    int status;
    const char *told; // part of the one line
};

const std::vector<refusal> refusals = {
    {"no command", "", 2, "command is missing"},
    {"unknown command", "exttract @/src @/out", 2, "'exttract' is no command"},
    {"unknown option", "extract --fast @/src @/out", 2, "fast"},
    {"option that Qt itself would take", "extract --style fusion @/src @/out", 2, "style"},
    {"no result directory", "extract @/src", 2, "RESULT_DIR"},
    {"a second source is missing", "extract @/src @/out @/more", 3, "does not exist"},
    {"unknown engine", "extract --engine 7 @/src @/out", 2, "--engine takes 0, 1, 2"},
    {"unknown scheme", "extract --scheme macos @/src @/out", 2, "macOS, iOS_UID, winOS"},
    {"unknown layout", "extract --layout disk @/src @/out", 2, "users-folder"},
    {"both ways with an earlier result", "extract --force --append @/src @/out", 2, "exclude"},
    {"no such account", "extract --account amelie @/src @/out", 3, "there are: anna b"},
    {"cancel after nothing", "extract --cancel-after 0 @/src @/out", 2, "--cancel-after"},
    {"unknown tab", "extract --tabs bookmarks,Histories @/src @/out", 2, "'Histories'"},
    {"unknown format", "extract --format xml @/src @/out", 2, "--format"},
    {"unknown progress", "extract --progress yes @/src @/out", 2, "--progress"},
    {"account that climbs", "extract --account ../x @/src @/out", 2, "--account"},
    {"account without a name", "extract --account :d @/src @/out", 2, "--account"},
    {"cipher without a file", "extract --encipher-log @/src @/out", 2, "--debug-log"},
    {"missing source", "extract @/gone @/out", 3, "does not exist"},
    {"source is a file", "extract @/note @/out", 3, "no list of the client"},
    {"results in the source", "extract @/src @/src/new/out", 4, "inside the source"},
    {"results are the source", "extract @/src @/src", 4, "inside the source"},
    {"results lead into the source", "extract @/src @/into_source/out", 4, "inside the source"},
    {"results return to the source", "extract @/src @/elsewhere/../src/out", 4,
     "inside the source"},
    {"source reached by a link", "extract @/to_source @/src/out", 4, "inside the source"},
    {"database leads into the source", "extract @/src @/trap", 4, "inside the source"},
    {"copied lists lead into the source", "extract @/src @/trap_of_view", 4, "inside the source"},
    {"source in the plug-in's folder",
     "extract @/own/Artifacts_Result/Scripted_plug-in/tmp/Users @/own", 4, "removes"},
    {"an earlier result", "extract @/src @/old", 4, "--force replaces it, --append adds to it"},
    {"log in the source", "extract --debug-log @/src/log @/src @/out", 4, "debug log"},
    {"log into a pipe without a reader", "extract --debug-log @/pipe @/src @/log_out", 4,
     "is no file"},
    {"log over the results", "extract --force --debug-log @/old/" OLD_DATABASE " @/src @/old", 4,
     "is the result database"},
    {"log in no folder", "extract --debug-log @/note/log @/src @/log_out", 4, "debug log"},
    {"results below a file", "extract @/src @/note/out", 4, "cannot write"},
    {"results below a device", "extract @/src /proc/out", 4, "cannot write"},
    {"missing library", "extract --plugin @/gone.so @/src @/out", 5, "/gone.so"},
    {"no library", "extract --plugin @/note @/src @/out", 5, "/note"},
    {"library without the factory", "extract --plugin " NO_PLUGIN " @/src @/out", 5,
     "create_object"},
    {"show without an extraction", "show @/elsewhere", 4, "no result database"},
    {"show a broken database", "show @/broken", 4, "cannot be read"},
    {"show with a wrong limit", "show --limit -3 @/elsewhere", 2, "--limit"},
    {"show in no zone", "show --timezone Mars @/elsewhere", 2, "--timezone"},
    {"scan without a source", "scan", 2, "SOURCE"},
    {"verify without a result", "verify @/elsewhere", 4, "run.json"},
    {"inspect a missing file", "inspect @/gone", 3, "missing"},
};

TEST_F(plugin_host, refuses_in_one_line_and_creates_nothing)
{
    QFile::link(path("src/Users"), path("into_source"));
    QFile::link(path("src"), path("to_source"));
    for (const char *made :
         {"trap/Artifacts_Result/Scripted_plug-in", "broken/Artifacts_Result/X",
          "own/Artifacts_Result/Scripted_plug-in/tmp/Users/eve/Library/Application "
          "Support/Cyberduck/History"})
        QDir().mkpath(path(made));
    // A dangling link: a file made through it would appear in the source.
    QFile::link(path("src/new.sqlite"),
                path("trap/Artifacts_Result/Scripted_plug-in/Scripted_plug-in.sqlite"));
    write("broken/Artifacts_Result/X/X.sqlite", "this is no database, but long enough for one");
    ASSERT_EQ(::mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    QDir().mkpath(path("old/Artifacts_Result/Scripted_plug-in"));
    QDir().mkpath(path("trap_of_view"));
    QFile::link(path("src/new"), path("trap_of_view/view"));
    write("old/" OLD_DATABASE, "");

    for (const refusal &row : refusals) {
        SCOPED_TRACE(row.name);
        QString arguments = QString::fromUtf8(row.arguments);
        if (arguments.startsWith(QLatin1String("extract")) &&
            !arguments.contains(QLatin1String("--plugin")))
            arguments.insert(7, QStringLiteral(" --plugin " SCRIPTED_PLUGIN));
        const outcome result = run(arguments);
        EXPECT_EQ(result.status, row.status) << result.err.toStdString();
        EXPECT_EQ(result.out, QString());
        EXPECT_TRUE(result.err.startsWith(QLatin1String("plugin_host: ")));
        EXPECT_EQ(result.err.count(QStringLiteral("plugin_host: ")),
                  result.err.count(QLatin1Char('\n')));
        EXPECT_TRUE(result.err.contains(QLatin1String(row.told))) << result.err.toStdString();
        EXPECT_FALSE(QFileInfo::exists(path("out")));
    }
    EXPECT_EQ(QDir(path("src")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList(QStringLiteral("Users")));
}

// Another program, or a run that does not end well, never costs an earlier result.
TEST_F(plugin_host, replaces_an_earlier_result_only_by_a_new_one)
{
    const auto rows = [this] {
        return run(QStringLiteral("show @/out --tables bookmarks --columns INT")).out.count('\n') -
               3;
    };
    ASSERT_EQ(extract(QStringLiteral("@/src @/out")).status, 0);
    EXPECT_EQ(rows(), 2);
    ASSERT_EQ(extract(QStringLiteral("--append @/src @/out")).status, 0);
    EXPECT_EQ(rows(), 4);

    environment_.insert(QStringLiteral("SCRIPTED_WAIT"), QStringLiteral("1"));
    QFile::remove(path("calls"));
    QProcess killed;
    start(killed, QStringLiteral("extract --force --plugin " SCRIPTED_PLUGIN " @/src @/out"));
    ASSERT_TRUE(wait_for_call(QStringLiteral("extract\n")));
    killed.kill();
    killed.waitForFinished();
    EXPECT_EQ(rows(), 4);
    environment_.remove(QStringLiteral("SCRIPTED_WAIT"));

    sqlite3 *other = nullptr;
    ASSERT_EQ(sqlite3_open(QFile::encodeName(path("out/" OLD_DATABASE)).constData(), &other), 0);
    ASSERT_EQ(sqlite3_exec(other, "begin immediate", nullptr, nullptr, nullptr), 0);
    const outcome locked = extract(QStringLiteral("--force @/src @/out"));
    EXPECT_EQ(locked.status, 4);
    EXPECT_TRUE(locked.err.contains(QStringLiteral("has locked")));
    sqlite3_close(other);

    const QString mark = path("out/" OLD_DATABASE ".partial");
    EXPECT_EQ(extract(QStringLiteral("--force --cancel-after 3 @/src @/out")).status, 130);
    EXPECT_TRUE(QFileInfo::exists(mark));
    EXPECT_EQ(extract(QStringLiteral("--force @/src @/out")).status, 0);
    EXPECT_FALSE(QFileInfo::exists(mark));
    EXPECT_EQ(QDir(path("out")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              (QStringList{QStringLiteral("Artifacts_Result"), QStringLiteral("inventory.sqlite"),
                           QStringLiteral("run.json")}));
}

// Runs in a shell, for what cannot be had by starting a program.
TEST_F(plugin_host, ends_well_where_its_surroundings_do_not)
{
    const struct
    {
        const char *name;
        const char *command; // $HOST is the program
        int status;
    } rows[] = {
        {"closed streams", "$HOST extract src out <&- >&- 2>&-", 0},
        {"closed input", "$HOST extract --force src out <&-", 0},
        {"full disk for the summary", "$HOST extract --force src out >/dev/full", 4},
        {"full disk for the tables", "$HOST show out >/dev/full", 4},
        {"working folder gone", "mkdir gone && cd gone && rmdir ../gone && $HOST extract s o", 2},
        {"a name that is not UTF-8", "$HOST extract src $(printf 'o\\377t')", 2},
        {"a list that cannot be read", "$HOST extract broken_list bad", 1},
        {"the same behind a link",
         "mkdir linked && cp -r broken_list linked/data && ln -s data/Users linked && "
         "$HOST extract --force linked bad",
         1},
    };
    QDir().mkpath(path("broken_list/Users/eve/Library/Application Support/Cyberduck/Bookmarks"));
    write("broken_list/Users/eve/Library/Application Support/Cyberduck/Bookmarks/a.duck", "x");
    environment_.insert(QStringLiteral("HOST"), QStringLiteral(PLUGIN_HOST));
    for (const auto &row : rows) {
        QProcess shell;
        shell.setProcessEnvironment(environment_);
        shell.setWorkingDirectory(path("."));
        shell.start(QStringLiteral("sh"), {QStringLiteral("-c"), QLatin1String(row.command)});
        ASSERT_TRUE(shell.waitForFinished()) << row.name;
        EXPECT_EQ(shell.exitCode(), row.status)
            << row.name << shell.readAllStandardError().toStdString();
    }
    EXPECT_FALSE(QFileInfo::exists(path("Users")));
}

TEST_F(plugin_host, calls_the_plugin_in_order_and_keeps_accents_in_any_locale)
{
    QFile::link(path("src/Users/zoë"), path("src/Users/zoë link"));
    QFile::link(path("elsewhere"), path("src/Users/stranger"));
    const outcome result = extract(QStringLiteral("@/src//../src @/öut --scheme iOS_UID"));
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_EQ(result.err, QString());
    const QString expected = QStringLiteral(
        "engine 0\nessentials\nengine 0\ngeneral true false true false\ndesktop\ncount 1\n"
        "source %1|macOS_Image|macOS|iOS_UID|anna b:,zoë:,zoë link:\nbackup pointer\n"
        "tabs bookmarks,history,transfers,preferences\nattributes \nresults\ncreate\nclear true\n"
        "find\nextract\nchats\nremove\ndestroyed\n");
    EXPECT_EQ(calls(), expected.arg(path("src/")));
    EXPECT_TRUE(
        QFileInfo::exists(path("öut/Artifacts_Result/Scripted_plug-in/Scripted_plug-in.sqlite")));
    EXPECT_TRUE(result.out.contains(QStringLiteral("bookmarks      2\n")));
    EXPECT_TRUE(result.out.contains(QStringLiteral("history        missing\n")));
}

TEST_F(plugin_host, hands_over_what_the_options_say)
{
    const outcome result = extract(QStringLiteral(
        "--engine 2 --source-count 5 --scheme winOS --os-display X --source-type T --account é:d:e "
        "--account b --tabs history --attributes kA,,kB --debug-log @/log --encipher-log --append "
        "--progress never @/src @/out"));
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    for (const QString &line :
         {QStringLiteral("engine 2\n"), QStringLiteral("general true false true true\n"),
          QStringLiteral("count 5\n"), QStringLiteral("|T|X|winOS|é:d:e,b:\n"),
          QStringLiteral("tabs history\n"), QStringLiteral("attributes kA,kB\n"),
          QStringLiteral("clear false\n")})
        EXPECT_TRUE(calls().contains(line)) << line.toStdString();
    EXPECT_FALSE(calls().contains(QStringLiteral("backup pointer")));
}

TEST_F(plugin_host, prints_the_json_summary_and_cancels_after_n_records)
{
    const outcome result =
        extract(QStringLiteral("--format json --cancel-after 3 --tabs bookmarks @/src @/q\"%1"));
    EXPECT_EQ(result.status, 130) << result.err.toStdString();
    const QJsonObject told = QJsonDocument::fromJson(result.out.toUtf8()).object();
    EXPECT_EQ(told.value("schema_version").toInt(), 1);
    EXPECT_EQ(told.value("database").toString(),
              path("q\"%1/Artifacts_Result/Scripted_plug-in/Scripted_plug-in.sqlite"));
    EXPECT_EQ(told.value("state").toString(), QStringLiteral("partial"));
    EXPECT_EQ(told.value("records").toInt(), 3);
    EXPECT_EQ(told.value("tables").toObject(), (QJsonObject{{"bookmarks", 2},
                                                            {"history", {}},
                                                            {"transfers", {}},
                                                            {"preferences", {}},
                                                            {"exportfilelist", {}}}));
}

TEST_F(plugin_host, cancels_on_signals_and_keeps_what_was_written)
{
    environment_.insert(QStringLiteral("SCRIPTED_WAIT"), QStringLiteral("1"));
    for (const int signal_number : {SIGINT, SIGTERM, SIGHUP}) {
        SCOPED_TRACE(signal_number);
        QFile::remove(path("calls"));
        QProcess process;
        start(process, QStringLiteral("extract --force --plugin " SCRIPTED_PLUGIN " @/src @/out"));
        ASSERT_TRUE(wait_for_call(QStringLiteral("extract\n")));
        kill(static_cast<pid_t>(process.processId()), signal_number);
        const outcome result = finish(process);
        EXPECT_EQ(result.status, 130);
        EXPECT_TRUE(result.out.contains(QStringLiteral("cancelled")));
        EXPECT_TRUE(calls().endsWith(QStringLiteral("chats\nremove\ndestroyed\n")));
    }
}

TEST_F(plugin_host, draws_a_bar_only_where_it_is_wanted)
{
    EXPECT_EQ(extract(QStringLiteral("@/src @/out")).err, QString());
    EXPECT_EQ(extract(QStringLiteral("--force --progress never @/src @/out")).err, QString());
    const outcome drawn = extract(QStringLiteral("--force --progress always @/src @/out"));
    EXPECT_TRUE(drawn.err.contains(QStringLiteral("bookmarks (1 of 4), 0 records")));
    EXPECT_TRUE(drawn.err.contains(QStringLiteral("history (2 of 4), 7 records")))
        << drawn.err.toStdString();
    EXPECT_FALSE(drawn.out.contains(QLatin1Char('\r')));
}

TEST_F(plugin_host, shows_null_apart_from_empty_and_keeps_rows_on_their_lines)
{
    ASSERT_EQ(extract(QStringLiteral("@/src @/out")).status, 0);
    const QString show = QStringLiteral("show @/out --tables bookmarks --columns all");
    EXPECT_EQ(run(show).out, QStringLiteral("bookmarks: 2 rows\n"
                                            "INT  nickname  comment\n"
                                            "1    a\\u000ab  -\n"
                                            "2    \"c\"\n\n"));
    EXPECT_EQ(run(show + QStringLiteral(" --limit 1 --columns nickname")).out,
              QStringLiteral("bookmarks: 2 rows, the first 1\nnickname\na\\u000ab\n\n"));
    EXPECT_EQ(
        run(show + QStringLiteral(" --format csv")).out,
        QStringLiteral("INT,nickname,comment\n\"1\",\"a\\u000ab\",\n\"2\",\"\"\"c\"\"\",\"\"\n"));
    EXPECT_EQ(run(show + QStringLiteral(" --format csv --raw --limit 1")).out,
              QStringLiteral("INT,nickname,comment\n\"1\",\"a\nb\",\n"));
    EXPECT_EQ(run(show + QStringLiteral(" --format json --where INT=2")).out,
              QStringLiteral("{\"bookmarks\": [\n  {\"INT\": 2, \"nickname\": \"\\\"c\\\"\", "
                             "\"comment\": \"\"}]}\n"));
    EXPECT_EQ(run(show + QStringLiteral(" --long --where INT=1")).out,
              QStringLiteral("bookmarks: 1 rows\nINT       1\nnickname  a\\u000ab\n"
                             "comment   -\n\n\n"));
    const outcome unknown = run(show + QStringLiteral(" --columns INT,hosts"));
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.out, QString());
    EXPECT_TRUE(unknown.err.contains(QStringLiteral("hosts; it has: INT, nickname, comment")));
}

TEST_F(plugin_host, extracts_with_the_library_beside_it_under_any_locale)
{
    const char *const bookmarks = "src/Users/zoë/Library/Application Support/Cyberduck/Bookmarks";
    QDir().mkpath(path(bookmarks));
    write((QByteArray(bookmarks) + "/é\u6771.duck").constData(),
          "<plist><dict><key>Nickname</key><string>\u6771</string></dict></plist>");
    ASSERT_EQ(run(QStringLiteral("extract @/src @/out")).status, 0);
    const outcome shown = run(QStringLiteral("show @/out --tables bookmarks --format csv "
                                             "--columns system_user,nickname,comment,source_file"));
    EXPECT_EQ(shown.out.section(QLatin1Char('\n'), 1),
              QStringLiteral("\"zoë\",\"\u6771\",,\"/Users/zoë/Library/Application Support/"
                             "Cyberduck/Bookmarks/é\u6771.duck\"\n"));
}

TEST_F(plugin_host, explains_itself)
{
    for (const char *arguments : {"--help", "extract --help", "show --help"}) {
        const outcome result = run(QLatin1String(arguments));
        EXPECT_EQ(result.status, 0);
        EXPECT_TRUE(result.out.contains(QStringLiteral("Example:\n  plugin_host"))) << arguments;
    }
    EXPECT_TRUE(run(QStringLiteral("--version")).out.startsWith(QStringLiteral("plugin_host ")));
}

} // namespace
