// A host loads the library, runs it, deletes the object, unloads the library and ends its
// application, 20 times over. Whatever Qt still holds of the library then crashes.
#include "tests/fixtures/foreign_interface.h"

#include <QApplication>
#include <QLibrary>
#include <QTemporaryDir>

#include <dlfcn.h>

#include <cstdio>
#include <memory>

namespace {

bool run_once(const QString &folder)
{
    QLibrary library(QStringLiteral(CYBERDUCK_LIBRARY));
    auto *factory = reinterpret_cast<foreign::plugin *(*)()>(library.resolve("create_object"));
    if (factory == nullptr)
        return false;
    std::unique_ptr<foreign::plugin> plugin(factory());
    foreign::general general;
    general.debug = general.in_file = true;
    general.file = folder + "/log";
    foreign::source source;
    source.path = folder + "/source/";
    source.internal = QStringLiteral("macOS");
    source.accounts = {{QStringLiteral("alice"), QString()}};
    plugin->set_engine_type(0);
    plugin->set_essentials();
    plugin->set_general_info(general);
    plugin->set_source_info(source);
    plugin->set_essential_for_haldo_bench_extraction({QStringLiteral("bookmarks")}, {});
    plugin->set_result_directory(folder + "/results");
    plugin->create_db_tables();
    plugin->set_clear_db(true);
    plugin->find_source_file();
    plugin->extract_artifacts();
    plugin->remove_temporary_asthetics();
    plugin.reset();
    return library.unload() && ::dlopen(CYBERDUCK_LIBRARY, RTLD_LAZY | RTLD_NOLOAD) == nullptr;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "minimal");
    const QTemporaryDir folder;
    for (int i = 0; i < 20; ++i) {
        const QApplication application(argc, argv);
        if (!run_once(folder.path())) {
            std::fputs("the library did not load, or stayed loaded\n", stderr);
            return 1;
        }
    }
    return 0;
}
