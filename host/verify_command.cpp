#include "host/verify_command.h"

#include "evidence/files/file_names.h"
#include "host/findings/result_reader.h"
#include "host/options/command_line.h"
#include "inventory/layouts/source_layout.h"
#include "inventory/places/list_finder.h"
#include "inventory/reading/sha256.h"
#include "results/database/result_tables.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

namespace host {

namespace {

constexpr help_text help = {
    "verify RESULT_DIR",
    "  plugin_host verify /cases/7/results\n\n"
    "Exit status: 0 nothing has changed, 1 something has, or the run was partial (standard output\n"
    "names it), 2 wrong usage, 4 no result that can be read."};

class verification
{
public:
    verification(const QString &directory, const QJsonObject &account)
        : directory_(directory)
        , account_(account)
    {
    }

    bool run()
    {
        if (account_.value("state").toString() != QLatin1String("complete"))
            tell("partial", QStringLiteral("the run was cancelled or killed"));
        check_files();
        check_lists();
        check_copies();
        const QJsonArray sources = account_.value("sources").toArray();
        for (const QJsonValue &source : sources)
            look_for_new_lists(source.toObject());
        print(QStringLiteral("%1 files compared, %2 differences, %3 lists could not be compared "
                             "because they were not read\n")
                  .arg(compared_)
                  .arg(differences_)
                  .arg(without_hash_));
        return differences_ == 0;
    }

private:
    void tell(const char *what, const QString &which)
    {
        ++differences_;
        print(QStringLiteral("%1: %2\n").arg(QLatin1String(what), -8).arg(which));
    }

    void compare(const QString &path, const QString &hash)
    {
        ++compared_;
        const QString now = QString::fromLatin1(inventory::sha256_of_file(path));
        if (now.isEmpty())
            tell("missing", path);
        else if (now != hash)
            tell("changed", path);
    }

    void check_files()
    {
        const QJsonObject files = account_.value("files").toObject();
        for (auto file = files.begin(); file != files.end(); ++file)
            compare(directory_ + QLatin1Char('/') + file.key(), file.value().toString());
        const QJsonObject log = account_.value("debug_log").toObject();
        if (!log.isEmpty())
            compare(log.value("path").toString(), log.value("sha256").toString());
    }

    void check_lists()
    {
        result_reader inventory(directory_ + QStringLiteral("/inventory.sqlite"));
        if (!inventory.is_open())
            return;
        inventory.for_each_row(QStringLiteral("list"),
                               {QStringLiteral("file"), QStringLiteral("sha256")}, {}, -1,
                               [this](const QVariantList &row) {
                                   const QString file = row.at(0).toString();
                                   known_.insert(file);
                                   if (row.at(1).isNull())
                                       ++without_hash_;
                                   else
                                       compare(file, row.at(1).toString());
                               });
    }

    // Lists that were copied because the plug-in needs another tree.
    void check_copies()
    {
        const QJsonArray sources = account_.value("sources").toArray();
        for (const QJsonValue &source : sources) {
            const QJsonArray copies = source.toObject().value("copied_lists").toArray();
            for (const QJsonValue &copy : copies)
                compare(copy.toObject().value("to").toString(),
                        copy.toObject().value("sha256").toString());
        }
    }

    void look_for_new_lists(const QJsonObject &source)
    {
        if (known_.isEmpty())
            return;
        const inventory::recognition found = inventory::recognise(
            source.value("path").toString(), source.value("layout").toString(), {});
        QStringList tabs;
        for (const char *tab : results::tab_names)
            tabs.append(QLatin1String(tab));
        for (const inventory::recognised_source &layout : found.sources) {
            inventory::list_finder finder(layout.root, layout.shown_root, tabs, {});
            const inventory::found_on_source lists = finder.find(layout.places);
            for (const inventory::found_list &list : lists.lists) {
                const QString file = evidence::decoded_name(list.real_path);
                if (!file.isEmpty() && !known_.contains(file) && is_of_user(source, list.user))
                    tell("new", file);
            }
        }
    }

    // A single home may have been given another name.
    static bool is_of_user(const QJsonObject &source, const QString &user)
    {
        const QJsonArray users = source.value("users").toArray();
        return users.contains(user) || !source.value("view").isUndefined();
    }

    QString directory_;
    QJsonObject account_;
    QSet<QString> known_;
    qint64 compared_ = 0;
    qint64 differences_ = 0;
    qint64 without_hash_ = 0;
};

} // namespace

exit_status run_verify(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.addPositionalArgument(QStringLiteral("RESULT_DIR"),
                                 QStringLiteral("The result directory of an extraction."));
    if (const auto ended = parse(parser, arguments, help))
        return *ended;
    const QStringList positional = parser.positionalArguments();
    if (positional.size() != 1 || positional.contains(QString()))
        return report(
            {exit_status::wrong_usage,
             QStringLiteral("verify takes one RESULT_DIR; try 'plugin_host verify --help'.")});
    if (is_lost_working_folder(positional))
        return report({exit_status::wrong_usage,
                       QStringLiteral("the working folder is gone; give absolute paths.")});
    const QString directory = QDir::current().absoluteFilePath(positional.constFirst());
    QFile file(directory + QStringLiteral("/run.json"));
    QJsonParseError problem;
    const QJsonDocument account = file.open(QIODevice::ReadOnly)
                                      ? QJsonDocument::fromJson(file.readAll(), &problem)
                                      : QJsonDocument();
    if (!account.isObject())
        return report({exit_status::result_unusable,
                       QStringLiteral("there is no run.json in %1 that can be read; give the "
                                      "RESULT_DIR of an extraction.")
                           .arg(directory)});
    return verification(directory, account.object()).run() ? exit_status::done
                                                           : exit_status::incomplete;
}

} // namespace host
