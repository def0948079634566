// Finds and loads the plug-in library.
#pragma once

#include "host/options/exit_status.h"
#include "host_interface/frame/cyberduck.h"

#include <QString>

#include <memory>
#include <optional>

namespace host {

// The plug-in's object, or why there is none. The library stays loaded until the program ends,
// because its static state and objects of its classes may outlive the plug-in's object.
struct loaded_plugin
{
    std::unique_ptr<cyberduck> object;
    std::optional<failure> problem;
};

// `file`: the library's path. Empty: searches beside the program and in its library folders. Needs
// the QApplication, because the object is a widget.
loaded_plugin load_plugin(const QString &file);

} // namespace host
