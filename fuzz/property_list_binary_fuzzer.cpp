#include "property_list_walk.h"

// The input is a binary list without its first eight bytes, which are always correct.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::read_and_walk("bplist00", data, size);
    return 0;
}
