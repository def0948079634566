// Finds and loads the plug-in library.
#pragma once

#include "exit_status.h"
#include "plugin/cyberduck.h"

#include <QString>

#include <memory>
#include <optional>

namespace host {

// The plug-in's object, or why there is none. The library stays loaded until the program ends:
// objects of its classes and its static state may outlive the plug-in's object.
struct loaded_plugin
{
    std::unique_ptr<cyberduck> object;
    std::optional<failure> problem;
};

// `file`: the library's path; empty searches beside the program and in the library folders that
// belong to it. Needs the QApplication, since the object is a widget.
loaded_plugin load_plugin(const QString &file);

} // namespace host
