#include "stand_ins.h"

#import <Foundation/NSDebug.h>

#include <map>
#include <set>
#include <vector>

namespace stand_ins {

namespace {

struct ownership
{
    int count = 0;
    std::string maker;
};

struct scripted_world
{
    NSMutableDictionary *attributes = [[NSMutableDictionary alloc] init];
    NSMutableDictionary *image_properties = [[NSMutableDictionary alloc] init];
    std::string raising_function;
    std::set<std::string> called;
    std::map<const void *, ownership> owned;
    QStringList wrong_releases;
};

scripted_world &world()
{
    static scripted_world only;
    return only;
}

const void *took(NSObject *object, const char *function)
{
    ownership &owned = world().owned[object];
    ++owned.count;
    owned.maker = function;
    return object;
}

} // namespace

void reset()
{
    [world().attributes removeAllObjects];
    [world().image_properties removeAllObjects];
    world().raising_function.clear();
    world().called.clear();
    world().owned.clear();
    world().wrong_releases.clear();
}

void set_attributes(NSString *path, NSDictionary *attributes)
{
    [world().attributes setObject:attributes forKey:path];
}

void set_image_properties(NSString *path, NSDictionary *properties)
{
    [world().image_properties setObject:properties forKey:path];
}

void raise_in(const std::string &function)
{
    world().raising_function = function;
}

std::vector<std::string> called_functions()
{
    return {world().called.cbegin(), world().called.cend()};
}

QStringList faults()
{
    QStringList lines = world().wrong_releases;
    for (const auto &[object, owned] : world().owned)
        lines += QStringLiteral("%1 object(s) of %2 not released")
                     .arg(owned.count)
                     .arg(QString::fromStdString(owned.maker));
    return lines;
}

int living_objects()
{
    GSDebugAllocationActive(YES);
    int count = 0;
    Class *classes = GSDebugAllocationClassList();
    for (Class *next = classes; *next != Nil; ++next)
        count += GSDebugAllocationCount(*next);
    NSZoneFree(NSDefaultMallocZone(), classes);
    return count;
}

void enter(const char *function)
{
    world().called.insert(function);
    if (world().raising_function == function)
        [NSException raise:@"stand-in" format:@"%s", function];
}

const void *hand_out(NSObject *object, const char *function)
{
    return object == nil ? nullptr : took([object retain], function);
}

NSDictionary *attributes_of(NSString *path)
{
    return [world().attributes objectForKey:path];
}

NSDictionary *image_properties_of(NSString *path)
{
    return [world().image_properties objectForKey:path];
}

} // namespace stand_ins

using stand_ins::world;

CFTypeRef CFRetain(CFTypeRef object)
{
    stand_ins::enter("CFRetain");
    return stand_ins::hand_out(static_cast<NSObject *>(const_cast<void *>(object)), "CFRetain");
}

void CFRelease(CFTypeRef object)
{
    auto &owned = world().owned;
    const auto found = owned.find(object);
    if (found == owned.end()) {
        world().wrong_releases += QStringLiteral("released what was not owned");
        return;
    }
    if (--found->second.count == 0)
        owned.erase(found);
    [static_cast<NSObject *>(const_cast<void *>(object)) release];
}
