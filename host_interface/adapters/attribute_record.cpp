#include "host_interface/adapters/attribute_record.h"

struct_GLOBAL_ARTIFACT_cfstring_attributes
attribute_record_of(const extraction::copy_attributes &attributes)
{
    struct_GLOBAL_ARTIFACT_cfstring_attributes record;
    static_cast<extraction::copy_attributes &>(record) = attributes;
    return record;
}
