// Measures one property list of the usual size: reading it, then asking for the values of a
// bookmark, in microseconds.
#include "platform/property_list.h"
#include "evidence/files/evidence_file.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <pugixml.hpp>

#include <array>
#include <utility>
#include <vector>

namespace {

using text_pair = std::pair<QByteArray, QByteArray>;

const std::vector<text_pair> &bookmark_texts()
{
    static const std::vector<text_pair> texts = {
        {"Protocol", "sftp"},
        {"Provider", "iterate GmbH"},
        {"Nickname", "Backup of the office server"},
        {"UUID", "8a1c6f2e-58a7-4a38-9d0b-0a6ad4c9a1ff"},
        {"Hostname", "backup.office.example.org"},
        {"Port", "22"},
        {"Username", "alice.example"},
        {"Path", "/srv/backup/2020/projects/office"},
        {"Comment",
         "nightly copy, ask before deleting anything; the list of what may go lies in the "
         "shared folder, and the key for the second server is kept by the office"},
        {"Access Timestamp", "1589021112345"},
        {"Transfer Connection", "Unlimited"},
        {"Encoding", "UTF-8"},
        {"Region", "eu-central-1"},
        {"Web URL", "https://backup.office.example.org/reports/index.html"},
    };
    return texts;
}

QByteArray xml_entry(const QByteArray &key, const QByteArray &text)
{
    return "\t<key>" + key + "</key>\n\t<string>" + text + "</string>\n";
}

QByteArray xml_bookmark()
{
    QByteArray list = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist>\n<dict>\n";
    for (const auto &[key, text] : bookmark_texts())
        list += xml_entry(key, text);
    for (const char *folder : {"Upload Folder Dictionary", "Download Folder Dictionary"})
        list += QByteArray("\t<key>") + folder + "</key>\n\t<dict>\n\t" +
                xml_entry("Path", "~/Documents/Office") + "\t</dict>\n";
    return list + "</dict>\n</plist>\n";
}

// Keys and values in turn, the top object last.
QByteArray binary_bookmark()
{
    QByteArray bytes = "bplist00";
    QByteArray offsets;
    int object_count = 0;
    const auto add = [&](const QByteArray &object) {
        offsets += static_cast<char>(bytes.size() >> 8);
        offsets += static_cast<char>(bytes.size() & 0xff);
        bytes += object;
        return static_cast<char>(object_count++);
    };
    const auto add_text = [&](const QByteArray &text) {
        const auto length = static_cast<char>(text.size());
        if (length < 15)
            return add(static_cast<char>(0x50 | length) + text);
        return add(QByteArray("\x5f\x10") + length + text);
    };
    QByteArray keys;
    QByteArray values;
    for (const auto &[key, text] : bookmark_texts()) {
        keys += add_text(key);
        values += add_text(text);
    }
    const char path_key = keys[7];
    const char path = add_text("~/Documents/Office");
    for (const char *folder : {"Upload Folder Dictionary", "Download Folder Dictionary"}) {
        keys += add_text(folder);
        values += add(QByteArray("\xd1") + path_key + path);
    }
    const char top = add(QByteArray("\xdf\x10") + static_cast<char>(keys.size()) + keys + values);
    QByteArray trailer(32, '\0');
    trailer[6] = 2;
    trailer[7] = 1;
    trailer[15] = static_cast<char>(object_count);
    trailer[23] = top;
    trailer[30] = static_cast<char>(bytes.size() >> 8);
    trailer[31] = static_cast<char>(bytes.size() & 0xff);
    return bytes + offsets + trailer;
}

// The keys that rows of bookmarks are made of.
qint64 read_bookmark(const formats::property_list_value &root)
{
    static const std::array<QString, 9> keys = {
        QStringLiteral("Path"),     QStringLiteral("Protocol"), QStringLiteral("Nickname"),
        QStringLiteral("UUID"),     QStringLiteral("Hostname"), QStringLiteral("Port"),
        QStringLiteral("Username"), QStringLiteral("Comment"),  QStringLiteral("Access Timestamp"),
    };
    static const QString upload = QStringLiteral("Upload Folder Dictionary");
    static const QString download = QStringLiteral("Download Folder Dictionary");
    qint64 units = root.value(upload).value(keys[0]).text().size();
    units += root.value(download).value(keys[0]).text().size();
    for (const QString &key : keys)
        units += root.value(key).text().size();
    return units;
}

void set_rate(benchmark::State &state, const QByteArray &list)
{
    state.SetBytesProcessed(state.iterations() * list.size());
    state.SetLabel(QByteArray::number(list.size()).toStdString() + " bytes");
}

void from_memory(benchmark::State &state, const QByteArray &bytes, bool is_asked)
{
    platform::property_list list;
    for (auto _ : state) {
        benchmark::DoNotOptimize(list.load_bytes(bytes));
        if (is_asked)
            benchmark::DoNotOptimize(read_bookmark(list.root()));
    }
    set_rate(state, bytes);
}

void from_file(benchmark::State &state, const QByteArray &bytes)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("bookmark")));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        state.SkipWithError("cannot write");
    file.close();
    const QString path = file.fileName();
    platform::property_list list;
    for (auto _ : state) {
        benchmark::DoNotOptimize(list.load(path));
        benchmark::DoNotOptimize(read_bookmark(list.root()));
    }
    set_rate(state, bytes);
}

// The baselines: the cost of the bytes without making a list of them.
void file_alone(benchmark::State &state)
{
    const QByteArray bytes = xml_bookmark();
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("bookmark")));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        state.SkipWithError("cannot write");
    file.close();
    const QByteArray path = QFile::encodeName(file.fileName());
    QByteArray content;
    content.reserve(16 * 1024);
    evidence::evidence_file opened;
    for (auto _ : state) {
        opened.open(path);
        benchmark::DoNotOptimize(opened.read_all(&content, 1 << 20));
        opened.close();
    }
    set_rate(state, bytes);
}

void parser_alone(benchmark::State &state)
{
    const QByteArray bytes = xml_bookmark();
    pugi::xml_document document;
    for (auto _ : state)
        benchmark::DoNotOptimize(document.load_buffer(bytes.constData(), size_t(bytes.size())));
    set_rate(state, bytes);
}

BENCHMARK(parser_alone);
BENCHMARK(file_alone);
BENCHMARK_CAPTURE(from_memory, xml_list, xml_bookmark(), false);
BENCHMARK_CAPTURE(from_memory, xml_list_with_look_ups, xml_bookmark(), true);
BENCHMARK_CAPTURE(from_memory, binary_list, binary_bookmark(), false);
BENCHMARK_CAPTURE(from_memory, binary_list_with_look_ups, binary_bookmark(), true);
BENCHMARK_CAPTURE(from_file, xml_list, xml_bookmark());
BENCHMARK_CAPTURE(from_file, binary_list, binary_bookmark());

} // namespace

BENCHMARK_MAIN();
