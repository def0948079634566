// A whole source, extracted through the plug-in's object: the first byte holds switches (see
// below), the rest is the source (see source_tree.h). Whatever it holds, the source stays as it
// was, nothing beside it is opened, the database is sound and holds as many rows as were counted,
// and each message of the log is one line.
#include "fuzzed_text.h"
#include "plugin/cyberduck.h"
#include "source_tree.h"
#include "watched_opens.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <sanitizer/lsan_interface.h>

namespace {

using fuzzed::require;

enum switches : std::uint8_t {
    home_folder = 1,
    with_log = 2,
    with_attributes = 4,
};

// One plug-in object, one result folder and one source folder for all inputs: making them anew
// would take most of the time.
class target
{
public:
    target()
        : folder_(place())
        , source_(QDir(folder_.path()).canonicalPath() + QStringLiteral("/source/"))
        , result_(QDir(folder_.path()).canonicalPath() + QStringLiteral("/result"))
        , log_(result_ + QStringLiteral("/debug.log"))
    {
        const QString beside = folder_.filePath(
            QStringLiteral("beside/Library/Application Support/Cyberduck/Bookmarks"));
        for (const QString &made : {source_, result_, beside})
            QDir().mkpath(made);
        QFile secret(beside + QStringLiteral("/secret.duck"));
        require(secret.open(QIODevice::WriteOnly) && secret.write("<plist><dict/></plist>") > 0);
        QObject::connect(&plugin_, &cyberduck::signal_extracted_records_of_plugin_overall,
                         [this](qint64 records) { counted_ = records; });
        plugin_.pub_set_engine_type(0);
        plugin_.pub_set_result_directory(result_);
        plugin_.pub_create_db_tables();
        database_ = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("check"));
        database_.setDatabaseName(result_ +
                                  QStringLiteral("/Artifacts_Result/Cyberduck/Cyberduck.sqlite"));
        require(database_.open());
    }

    // Qt removes no file whose name is no text.
    ~target() { fuzz::empty_folder(source_.toStdString()); }
    target(const target &) = delete;
    target &operator=(const target &) = delete;

    void run(std::uint8_t chosen, const std::uint8_t *data, size_t size)
    {
        const std::string source = source_.toStdString();
        fuzz::empty_folder(source);
        fuzz::make_source_tree(source, data, size);
        const auto before = fuzz::describe_tree(source);
        watched_opens::begin(source.substr(0, source.size() - 1), result_.toStdString());
        extract(chosen);
        watched_opens::end();
        require(fuzz::describe_tree(source) == before);
        require(QDir(folder_.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size() ==
                3);
        check_database();
        if ((chosen & with_log) != 0)
            check_log();
    }

private:
    // In memory where the system has such a place.
    static QString place()
    {
        const QString memory = QStringLiteral("/dev/shm");
        return (QFileInfo(memory).isWritable() ? memory : QDir::tempPath()) +
               QStringLiteral("/source_tree-XXXXXX");
    }

    static QStringList tabs()
    {
        return {QStringLiteral("bookmarks"), QStringLiteral("history"), QStringLiteral("transfers"),
                QStringLiteral("preferences")};
    }

    void extract(std::uint8_t chosen)
    {
        QFile::remove(log_);
        struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info general;
        general.debug_mode_status = general.debug_print_in_file = (chosen & with_log) != 0;
        general.debug_file_path = log_;
        struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info source;
        source.fs_extraction_source_path = source_;
        source.source_type_internal = (chosen & home_folder) != 0
                                          ? QStringLiteral("macOS_Home_Directory")
                                          : QStringLiteral("macOS_Image");
        source.os_scheme_display = source.os_scheme_internal = QStringLiteral("macOS");
        source.system_account_QList = {{QStringLiteral("alice"), {}},
                                       {QStringLiteral("bob"), {}},
                                       {QStringLiteral("../../beside"), {}}};
        plugin_.pub_set_engine_type(0);
        plugin_.pub_set_essentials();
        plugin_.pub_set_engine_type(0);
        plugin_.pub_set_general_info(general);
        plugin_.pub_set_source_count(1);
        plugin_.pub_set_source_info(source);
        plugin_.pub_set_essential_for_haldo_bench_extraction(tabs(), {});
        plugin_.pub_set_extended_attributes_list(
            (chosen & with_attributes) != 0 ? QStringList{QStringLiteral("kMDItemFinderComment"),
                                                          QStringLiteral("kMDItemFSSize"),
                                                          QStringLiteral("kMDItemDownloadedDate"),
                                                          QStringLiteral("com_apple_note")}
                                            : QStringList());
        plugin_.pub_set_result_directory(result_);
        plugin_.pub_find_source_file();
        plugin_.pub_extract_artifacts();
        plugin_.pub_remove_temporary_asthetics();
    }

    // Leaves the tables empty.
    void check_database() const
    {
        const auto answer = [this](const QString &question) {
            QSqlQuery query(question, database_);
            require(query.next());
            return query.value(0);
        };
        require(answer(QStringLiteral("pragma integrity_check")) == QLatin1String("ok"));
        qint64 rows = 0;
        for (const QString &table : tabs()) {
            rows += answer(QStringLiteral("select count(*) from ") + table).toLongLong();
            require(QSqlQuery(database_).exec(QStringLiteral("delete from ") + table));
        }
        require(rows == counted_);
    }

    void check_log() const
    {
        QFile log(log_);
        require(log.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(log.readAll());
        require(text.endsWith(QLatin1Char('\n')));
        const QStringList lines = text.chopped(1).split(QLatin1Char('\n'));
        for (const QString &line : lines) {
            require(line.startsWith(QLatin1Char('[')) &&
                    line.contains(QLatin1String("][HALDO_BENCH][Artifacts Extraction][")));
            for (const QChar character : line)
                require(character.category() != QChar::Other_Control);
        }
    }

    QTemporaryDir folder_;
    QString source_;
    QString result_;
    QString log_;
    cyberduck plugin_;
    QSqlDatabase database_;
    qint64 counted_ = 0;
};

// Never deleted: Qt's own statics are gone by the time libFuzzer leaves the program.
QApplication *application = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "minimal");
    // File names are UTF-8, whatever the locale.
    qputenv("LC_ALL", "C.UTF-8");
    // What Qt's platform keeps for good is no leak of ours.
    const __lsan::ScopedDisabler leaks_not_counted;
    application = new QApplication(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, size_t size)
{
    static target tested;
    if (size > 0)
        tested.run(data[0], data + 1, size - 1);
    return 0;
}
