// Extracts a whole source through the plug-in's object. The first byte holds switches (see below),
// the rest is the source (see samples/source_from_bytes.h). After each run the source is unchanged,
// no file beside it has become a row, the database is sound and holds as many rows as were counted
// with the texts of the lists, and each message of the log is one line. An odd result database may
// lose rows, nothing else.
#include "samples/source_from_bytes.h"
#include "tests/fixtures/evidence_snapshot.h"
#include "tests/fixtures/host_driver.h"
#include "platform/property_list.h"
#include "tests/fixtures/result_rows.h"
#include "text/stored_text.h"

#include <QApplication>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QVariantMap>

#include <sanitizer/lsan_interface.h>

#include <cstdlib>

namespace {

enum switches : std::uint8_t {
    home_folder = 1,
    with_attributes = 4,
    odd_database = 8, // the next two bits say which
};

constexpr char make_odd[][120] = {
    "create table bookmarks (INT integer primary key)",
    "create view history as select 1 as INT",
    "create table bookmarks (INT integer primary key, nickname check (nickname is null))",
    "create table transfers (INT, hostname unique, port not null)",
};

constexpr char beside[] = "not of the source";

void require(bool holds)
{
    if (!holds)
        std::abort();
}

// One plug-in object, one result folder and one source folder serve all inputs, because making them
// takes most of the time.
class target
{
public:
    target()
    {
        // Makes Qt's own record of connections, which then outlives the plug-in's object.
        static_cast<void>(QSqlDatabase::connectionNames());
        source_.write(QStringLiteral("../beside") + QLatin1String(older_bookmarks) + "secret.duck",
                      xml_dictionary(text_entry("Hostname", beside)));
    }

    // Qt does not remove files whose names are no text.
    ~target() { samples::empty_folder(source_.root().toStdString()); }
    target(const target &) = delete;
    target &operator=(const target &) = delete;

    void run(std::uint8_t chosen, const std::uint8_t *data, size_t size)
    {
        samples::empty_folder(source_.root().toStdString());
        samples::make_source_tree(source_.root().toStdString(), data, size);
        const QString outer = source_.outside(QStringLiteral("."));
        host_.source_type = (chosen & home_folder) != 0 ? QStringLiteral("macOS_Home_Directory")
                                                        : QStringLiteral("macOS_Image");
        host_.attributes = (chosen & with_attributes) != 0 ? selected_ : QStringList();
        const bool is_odd = (chosen & odd_database) != 0;
        if (is_odd)
            replace_database(make_odd[chosen / (2 * odd_database) % std::size(make_odd)]);
        const evidence_snapshot before = snapshot_of(source_.root());
        const run_outcome outcome = host_.run(true);
        require(snapshot_of(source_.root()) == before);
        require(QDir(outer).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size() == 3);
        const result_reader results(source_.database());
        require(results.integrity() == QLatin1String("ok"));
        if (is_odd) {
            QFile::remove(source_.database());
        } else {
            const table_rows rows = results.all_rows();
            require(row_count(rows) == outcome.records);
            require(rows[0].filter(QLatin1String(beside)).isEmpty());
            if ((chosen & home_folder) == 0)
                check_texts();
        }
        for (const QString &line : outcome.log) {
            for (const QChar character : line)
                require(character.category() != QChar::Other_Control);
        }
    }

private:
    void replace_database(const char *statement)
    {
        QFile::remove(source_.database());
        source_.execute(QLatin1String(statement));
    }

    // As bytes: reading through Qt would hide what a text of UTF-16 loses.
    void check_texts()
    {
        const QList<QVariantMap> rows = source_.rows(
            QStringLiteral("(select INT, source_file, cast(nickname as blob) as nickname, "
                           "cast(hostname as blob) as hostname from bookmarks)"));
        for (const QVariantMap &row : rows) {
            const QString file = row.value(QStringLiteral("source_file")).toString();
            if (!list_.load(source_.root() + file.mid(1)))
                continue; // by way of a link, or replaced characters
            for (const char *key : {"Nickname", "Hostname"}) {
                const QString text = list_.root().value(QLatin1String(key)).text().trimmed();
                const QVariant stored = row.value(QString::fromLatin1(key).toLower());
                require(stored.isNull() == text.isNull());
                require(stored.toByteArray() == text::whole_characters(text).toUtf8());
            }
        }
    }

    platform::property_list list_;
    const QStringList selected_ = {
        QStringLiteral("kMDItemFinderComment"), QStringLiteral("kMDItemFSSize"),
        QStringLiteral("kMDItemDownloadedDate"), QStringLiteral("com_apple_note")};
    source_builder source_;
    host_driver host_{
        source_, {QStringLiteral("alice"), QStringLiteral("bob"), QStringLiteral("../../beside")}};
};

// Never deleted: Qt's own statics are destroyed before libFuzzer leaves the program.
QApplication *application = nullptr;

} // namespace

// A whole run allocates much and frees it soon.
extern "C" const char *__asan_default_options() // NOLINT(bugprone-reserved-identifier)
{
    return "malloc_context_size=4:quarantine_size_mb=8:thread_local_quarantine_size_kb=64";
}

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "minimal");
    // File names are UTF-8, whatever the locale.
    qputenv("LC_ALL", "C.UTF-8");
    // In memory where the system has such a place.
    if (QFileInfo(QStringLiteral("/dev/shm")).isWritable())
        qputenv("TMPDIR", "/dev/shm");
    // Qt's platform never frees some memory. Those are not our leaks.
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
