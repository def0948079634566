// What a test tells the stand-ins for Apple's frameworks, and what they have counted.
#pragma once

#include <QStringList>

#include <string>
#include <vector>

namespace stand_ins {

// Forgets scripts, counts and faults.
void reset();

// From now on the function of that name raises an exception; empty: none does.
void raise_in(const std::string &function);
// The functions that were called since the reset.
std::vector<std::string> called_functions();

// Objects that were created, copied or retained and not released since, and releases of what was
// not owned; one line for each.
QStringList faults();
// All objects of Foundation that are alive. Caches make them more when something happens for the
// first time.
int living_objects();

} // namespace stand_ins
