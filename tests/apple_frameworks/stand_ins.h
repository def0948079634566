// What a test scripts into the stand-ins for Apple's frameworks, and what they have counted.
#pragma once

#import <Foundation/Foundation.h>

#include <QStringList>

#include <string>

namespace stand_ins {

// Forgets scripts, counts and faults.
void reset();

// Spotlight attributes of the file at that path, by their public names. A file without a script has
// no item.
void set_attributes(NSString *path, NSDictionary *attributes);
// Properties of the first picture of the file at that path.
void set_image_properties(NSString *path, NSDictionary *properties);
// From now on the function of that name raises an exception; null: none does.
void raise_in(const char *function);
// Names of the functions that raise_in knows.
QStringList raising_functions();

// Objects that were created, copied or retained and not released since, and releases of what was
// not owned; one line for each.
QStringList faults();
// All objects of Foundation that are alive. Caches make it grow at first use.
int living_objects();

// --- For the stand-ins themselves

// At the start of each function.
void enter(const char *function);
// The object, which its caller now has to release. Null stays null.
const void *hand_out(NSObject *object, const char *function);
NSDictionary *attributes_of(NSString *path);
NSDictionary *image_properties_of(NSString *path);

} // namespace stand_ins
