// One object through 1,000 runs: what it holds afterwards is what it held after the first.
#include "samples/hostile_source.h"
#include "tests/fixtures/host_driver.h"
#include "tests/fixtures/printing.h"

#include <QDir>
#include <QSqlDatabase>

#include <gtest/gtest.h>

#include <malloc.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// Of the sanitizers' runtime; GCC comes without the header.
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace {

constexpr int runs = 1000;
// What the C library keeps for itself. Five bytes that each run left behind would be more.
constexpr qint64 noise_bytes = 4096;

qint64 bytes_in_use()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return static_cast<qint64>(__sanitizer_get_current_allocated_bytes());
#else
    const auto memory = ::mallinfo2();
    return static_cast<qint64>(memory.uordblks + memory.hblkhd);
#endif
}

QStringList open_descriptors()
{
    QStringList open;
    for (const QFileInfo &entry :
         QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::AllEntries | QDir::System))
        open.append(entry.fileName() + QLatin1Char(' ') + entry.symLinkTarget());
    return open;
}

TEST(leak, a_thousand_runs_of_one_object_leave_nothing_behind)
{
    source_builder source;
    fill_hostile_source(source);
    host_driver host(source, {QStringLiteral("alice"), QStringLiteral("mallory")});
    const qint64 records = host.run(true).records;
    ASSERT_GT(records, 30);

    const QStringList descriptors = open_descriptors();
    const QStringList connections = QSqlDatabase::connectionNames();
    const qint64 bytes = bytes_in_use();
    for (int i = 1; i < runs; ++i)
        ASSERT_EQ(host.run(true).records, records) << i;
    const qint64 bytes_more = bytes_in_use() - bytes;
    EXPECT_LE(bytes_more, noise_bytes);
    EXPECT_EQ(QSqlDatabase::connectionNames(), connections);
    EXPECT_EQ(open_descriptors(), descriptors);
}

} // namespace
