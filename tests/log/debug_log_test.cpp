#include "log/encryptor_string.h"
#include "tests/fixtures/log_capture.h"
#include "tests/fixtures/printing.h"

#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

QString content_of(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return QString::fromUtf8(file.readAll());
}

struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info settings(const QString &path)
{
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info info;
    info.debug_mode_status = true;
    info.debug_print_in_file = true;
    info.debug_file_path = path;
    return info;
}

TEST(debug_log, lines_name_engine_and_function)
{
    const struct
    {
        const char *name;
        int engine;
        const char *function_info;
        const char *expected; // behind the time
    } rows[] = {
        {"first engine", 0, "static bool plugin_static_function::a(QString, QString)",
         "][HALDO_BENCH][Artifacts Extraction][plugin_static_function::a]:-- text"},
        {"second engine", 1, " void c::b() ", "][HALDO_SWEEP][Artifacts Extraction][c::b]:-- text"},
        {"third engine", 2, "f()", "][HALDO_FIELD][Artifacts Extraction][f]:-- text"},
        {"no engine", -1, "f()",
         "][ -----FAILED----- to find Engine Type ][-1][Artifacts Extraction][f]:-- text"},
        {"blank function", 0, "   ",
         "][HALDO_BENCH][Artifacts Extraction][FUNCTION INFO IS EMPTY ---FAILED--- debug!!!]:-- "
         "text"},
        {"no parenthesis costs the last character", 0, "void name",
         "][HALDO_BENCH][Artifacts Extraction][nam]:-- text"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const log_capture log;
        plugin_static_function::set_engine_type(row.engine);
        plugin_static_function::app_debug(QStringLiteral("text"), QLatin1String(row.function_info));
        const QString line = content_of(log.path());
        static const QRegularExpression time(
            QStringLiteral("^\\[\\d{4}-\\S{3,4}-\\d\\dT\\d\\d-\\d\\d-\\d\\d"));
        EXPECT_TRUE(time.match(line).hasMatch()) << qPrintable(line);
        EXPECT_TRUE(line.endsWith(QLatin1String(row.expected) + QLatin1Char('\n')))
            << qPrintable(line);
    }
}

// A file of the source may be named like this to hide or invent lines of the log.
TEST(debug_log, no_text_breaks_or_disguises_its_line)
{
    const QByteArray longest = QByteArray(16384, 'x') + " [3616 more]";
    const struct
    {
        const char *name;
        QString text;
        const char *expected;
    } rows[] = {
        {"a line of its own", QStringLiteral("a\n[2020-Jan-01T00-00-00][HALDO_BENCH]"),
         "a\\u000a[2020-Jan-01T00-00-00][HALDO_BENCH]"},
        {"line ends of any kind",
         QStringLiteral("\r") + QChar(0x0b) + QChar(0x0c) + QChar(0x85) + QChar(0x2028) +
             QChar(0x2029),
         "\\u000d\\u000b\\u000c\\u0085\\u2028\\u2029"},
        {"terminal commands and NUL", QStringLiteral("\x1b[2J") + QChar(0x9b) + QChar(0),
         "\\u001b[2J\\u009b\\u0000"},
        {"writing direction and nothing to see",
         QString(QChar(0x202e)) + QChar(0x2066) + QChar(0x061c) + QChar(0x200b) + QChar(0xfeff),
         "\\u202e\\u2066\\u061c\\u200b\\ufeff"},
        {"beyond 16 bits", QString::fromUtf8("\xf3\xa0\x80\xa0\xf0\x9f\xa6\x86"),
         "\\udb40\\udc20\xf0\x9f\xa6\x86"},
        {"half a pair", QString(QChar(0xd800)) + QChar('x') + QChar(0xdc00), "\\ud800x\\udc00"},
        {"backslashes only where they could mislead", QStringLiteral("c:\\x \\u000a \\\\u \\"),
         "c:\\x \\u005cu000a \\\\u005cu \\"},
        {"no end", QString(20000, QLatin1Char('x')), longest.constData()},
        {"other languages", QStringLiteral("\u00e9\u65e5\u0301\t"),
         "\xc3\xa9\xe6\x97\xa5\xcc\x81\\u0009"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        log_capture log;
        plugin_static_function::app_debug(row.text, QStringLiteral("f()"));
        EXPECT_EQ(log.take_messages(), QStringList(QString::fromUtf8(row.expected)));
    }
}

TEST(debug_log, enciphered_records_stay_enciphered_until_told_otherwise)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("log"));
    auto info = settings(path);
    info.debug_encryption_status = true;
    plugin_static_function::set_general_info(info);
    plugin_static_function::app_debug(QStringLiteral("first"), QStringLiteral("f()"));
    plugin_static_function::set_essentials();
    EXPECT_TRUE(plugin_static_function::debug_encryption_status_bool);
    plugin_static_function::set_general_info(info); // appends
    plugin_static_function::app_debug(QStringLiteral("second"), QStringLiteral("f()"));
    plugin_static_function::close_debug_file();

    const QStringList records = content_of(path).split(QStringLiteral("<[{()}]>"));
    ASSERT_EQ(records.size(), 3);
    EXPECT_TRUE(records.at(2).isEmpty());
    encryptor_string cipher;
    EXPECT_TRUE(cipher.decryptToString(records.at(0)).endsWith(QStringLiteral("[f]:-- first")));
    EXPECT_TRUE(cipher.decryptToString(records.at(1)).endsWith(QStringLiteral("[f]:-- second")));
    plugin_static_function::set_general_info({});
    plugin_static_function::set_essentials();
}

TEST(debug_log, writes_nothing_unless_asked)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("log"));
    auto info = settings(path);
    info.debug_mode_status = false;
    plugin_static_function::set_general_info(info);
    plugin_static_function::app_debug(QStringLiteral("text"), QStringLiteral("f()"));
    EXPECT_FALSE(QFile::exists(path));
    info = settings(folder.filePath(QStringLiteral("missing/log")));
    plugin_static_function::set_general_info(info);
    plugin_static_function::app_debug(QStringLiteral("text"), QStringLiteral("f()"));
    EXPECT_FALSE(plugin_static_function::debug_file_regular_QFile.isOpen());
    plugin_static_function::set_essentials();
}

TEST(host_records, resets_keep_what_others_count_on)
{
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info source;
    for (QString *text : {&source.os_version_full, &source.unread_text_7, &source.unread_text_11,
                          &source.unread_text_12, &source.unread_text_13})
        *text = QStringLiteral("x");
    source.unread_list_9 = QStringList(QStringLiteral("x"));
    source.system_account_QList.append({QStringLiteral("alice"), {}});
    const auto copy = source;
    plugin_static_function::clear_variables_haldo_and_artifact_common_source_info(source);
    EXPECT_TRUE(source.os_version_full.isEmpty() && source.unread_text_7.isEmpty() &&
                source.unread_text_11.isEmpty() && source.unread_list_9.isEmpty() &&
                source.system_account_QList.isEmpty());
    EXPECT_EQ(source.unread_text_12, QStringLiteral("x"));
    EXPECT_EQ(source.unread_text_13, QStringLiteral("x"));
    EXPECT_EQ(copy.system_account_QList.size(), 1);

    auto general = settings(QStringLiteral("/x"));
    general.debug_encryption_status = true;
    general.unread_flag_1 = true;
    plugin_static_function::clear_variables_haldo_and_artifact_common_general_info(general);
    EXPECT_FALSE(general.unread_flag_1 || general.debug_mode_status ||
                 general.debug_print_in_file || general.debug_print_on_terminal);
    EXPECT_TRUE(general.debug_encryption_status);
    EXPECT_TRUE(general.debug_file_path.isEmpty());
}

} // namespace
