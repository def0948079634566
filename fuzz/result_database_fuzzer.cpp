// Reads any file as the program reads a result database.
#include "host/findings/result_reader.h"
#include "results/database/result_tables.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>

namespace {

// In memory where the system has such a file system.
const QString &database_path()
{
    static const QTemporaryDir folder(QFileInfo::exists(QStringLiteral("/dev/shm"))
                                          ? QStringLiteral("/dev/shm/result_database_XXXXXX")
                                          : QString());
    static const QString path = folder.filePath(QStringLiteral("Cyberduck.sqlite"));
    return path;
}

void read_table(host::result_reader &database, const QString &table)
{
    constexpr qint64 limit = 1000;
    const QStringList columns = database.columns(table);
    if (columns.isEmpty())
        return;
    static_cast<void>(database.count(table));
    qint64 read = 0;
    database.for_each_row(table, columns, {}, limit, [&](const QVariantList &row) {
        ++read;
        if (row.size() != columns.size())
            std::abort();
    });
    if (read > limit)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, size_t size)
{
    static int argument_count = 1;
    static char program_name[] = "result_database_fuzzer";
    static char *arguments[] = {program_name, nullptr};
    static const QCoreApplication application(argument_count, arguments);
    QFile file(database_path());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        std::abort();
    file.write(reinterpret_cast<const char *>(data), qint64(size));
    file.close();
    host::result_reader database(database_path());
    if (!database.is_open())
        return 0;
    const QStringList tables = results::table_names();
    for (const QString &table : tables)
        read_table(database, table);
    return 0;
}
