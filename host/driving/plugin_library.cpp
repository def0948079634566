#include "host/driving/plugin_library.h"

#include "host_interface/frame/create_object.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibrary>
#include <QStringList>

namespace host {

namespace {

using factory = decltype(&create_object);
constexpr char factory_name[] = "create_object";

loaded_plugin failed(const QString &message)
{
    return {nullptr, failure{exit_status::plugin_unusable, message}};
}

// In the order in which they are tried. The last is the folder of an installation.
QStringList default_places()
{
    const QDir program_folder(QCoreApplication::applicationDirPath());
    QStringList places;
    for (const char *folder : {".", "../lib", PLUGIN_HOST_LIBRARY_FOLDER}) {
        for (const char *name : {"libcyberduck.so", "libcyberduck.dylib"}) {
            places.append(QDir::cleanPath(program_folder.absoluteFilePath(
                QLatin1String(folder) + QLatin1Char('/') + QLatin1String(name))));
        }
    }
    places.removeDuplicates();
    return places;
}

QString first_existing(const QStringList &places)
{
    for (const QString &place : places) {
        if (QFileInfo::exists(place))
            return place;
    }
    return {};
}

} // namespace

loaded_plugin load_plugin(const QString &file)
{
    const QStringList places =
        file.isEmpty() ? default_places() : QStringList{QFileInfo(file).absoluteFilePath()};
    const QString path = first_existing(places);
    if (path.isEmpty()) {
        return failed(QStringLiteral("no plug-in library at %1; build it, or name it with "
                                     "--plugin FILE.")
                          .arg(places.join(QStringLiteral(", "))));
    }
    // Resolves all symbols now: a missing one fails here, by name, not during the run.
    QLibrary library(path);
    library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    if (!library.load()) {
        return failed(QStringLiteral("the plug-in library %1 cannot be loaded (%2); name another "
                                     "with --plugin FILE.")
                          .arg(path, library.errorString().simplified()));
    }
    const auto create = reinterpret_cast<factory>(library.resolve(factory_name));
    if (!create) {
        return failed(QStringLiteral("the library %1 has no symbol %2, so it is not a plug-in; "
                                     "name another with --plugin FILE.")
                          .arg(path, QLatin1String(factory_name)));
    }
    std::unique_ptr<cyberduck> object(create());
    if (!object) {
        return failed(QStringLiteral("%1 of the plug-in library %2 made no object; name another "
                                     "library with --plugin FILE.")
                          .arg(QLatin1String(factory_name), path));
    }
    return {std::move(object), std::nullopt};
}

} // namespace host
