// Watches every file that this program opens, whoever calls: the plug-in, Qt or SQLite.
#pragma once

#include <string>

namespace watched_opens {

// From now on, what is opened has to lie in `source`, for reading only, or in `result`, both free
// of links; else the program is aborted. A few files of the system itself are let through.
void begin(const std::string &source, const std::string &result);
void end();

} // namespace watched_opens
