#include "property_list_walk.h"

// The input is a whole list. Inputs that begin like a binary list are left to the other fuzzer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size > 0 && data[0] == 'b')
        return 0;
    fuzz::read_and_walk("", data, size);
    return 0;
}
