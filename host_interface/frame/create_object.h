// The one symbol that the loadable library exports.
#pragma once

#include <QtGlobal>

class cyberduck;

// Returns a new object without a parent, owned by the caller. Null when there is no memory. Needs a
// QApplication.
extern "C" Q_DECL_EXPORT cyberduck *create_object();
