#include "host_interface/frame/create_object.h"

#include "host_interface/frame/cyberduck.h"

cyberduck *create_object()
{
    try {
        return new cyberduck(nullptr);
    } catch (...) {
        return nullptr; // out of memory: nothing may throw into the host
    }
}
