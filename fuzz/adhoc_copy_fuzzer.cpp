// Working copies of files with hostile names. The first byte holds switches (see below), the rest
// is the name of the source file. Whatever the name, the source stays as it was, the copy equals it
// and lies in the ad-hoc folder.
#include "support/plugin_helper_functions.h"
#include "support/plugin_static_function.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sanitizer/lsan_interface.h>

#include <cstdint>
#include <cstdlib>

namespace {

enum switches : std::uint8_t {
    as_database = 1,
    with_log = 2,
    name_taken = 4,
    cancelled = 8,
};

// Never deleted: Qt's own statics are gone by the time libFuzzer leaves the program.
QApplication *application = nullptr;
plugin_helper_functions *helper = nullptr;

void require(bool holds)
{
    if (!holds)
        std::abort();
}

bool write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly) && file.write(content) >= 0;
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void empty(const QString &folder)
{
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Qt warns of every name with a null character.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    // What Qt's platform and fontconfig keep for good is no leak of ours.
    const __lsan::ScopedDisabler leaks_not_counted;
    application = new QApplication(*argc, *argv);
    helper = new plugin_helper_functions(nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, size_t size)
{
    // A "/" would leave the folders that are emptied here.
    const QString name =
        size < 2 ? QString()
                 : QString::fromUtf8(reinterpret_cast<const char *>(data + 1), int(size - 1));
    if (name.contains(QLatin1Char('/')))
        return 0;
    static const QTemporaryDir folder;
    const QString source = folder.filePath(QStringLiteral("source/"));
    const QString copies = folder.filePath(QStringLiteral("copies/"));
    empty(source);
    empty(copies);

    const std::uint8_t chosen = size == 0 ? 0 : data[0];
    const QString path = source + name;
    const QString log = path + QStringLiteral("-wal");
    const bool made = write(path, "pages");
    const bool log_made = (chosen & with_log) != 0 && write(log, "log");
    if ((chosen & name_taken) != 0)
        write(copies + name, "another");
    plugin_static_function::set_cancel_extraction((chosen & cancelled) != 0);
    helper->set_adhoc_parent_path(copies);
    const QString copy = (chosen & as_database) != 0
                             ? helper->get_adhoc_path_for_database(path)
                             : helper->get_adhoc_path_for_regular_file(path);
    plugin_static_function::set_cancel_extraction(false);

    require(copy.startsWith(copies) && !copy.mid(copies.size()).contains(QLatin1Char('/')));
    require(!made || read(path) == "pages");
    require(!log_made || read(log) == "log");
    if (made && (chosen & cancelled) == 0 && QFile::exists(copy)) {
        require(read(copy) == "pages");
        require(!log_made || (chosen & as_database) == 0 ||
                read(copy + QStringLiteral("-wal")) == "log");
    }
    return 0;
}
