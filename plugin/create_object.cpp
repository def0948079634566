#include "create_object.h"

#include "cyberduck.h"

cyberduck *create_object()
{
    try {
        return new cyberduck(nullptr);
    } catch (...) {
        return nullptr; // out of memory: nothing may be thrown into the host
    }
}
