// The host's record of a file's Spotlight attributes.
#pragma once

#include "extraction/copies/copy_attributes.h"

#include <QString>

// The attributes are the first 14 members. This plug-in leaves the others null.
struct struct_GLOBAL_ARTIFACT_cfstring_attributes : extraction::copy_attributes
{
    QString unfilled_15;
    QString attr_file_type;
    QString unfilled_17;
    QString unfilled_18;
    QString unfilled_19;
    QString unfilled_20;
    QString unfilled_21;
    QString unfilled_22;
    QString unfilled_23;
    QString unfilled_24;
    QString unfilled_25;
    QString unfilled_26;
    QString unfilled_27;
    QString unfilled_28;
    QString unfilled_29;
    QString unfilled_30;
    QString unfilled_31;
    QString unfilled_32;
    QString unfilled_33;
    QString unfilled_34;
    QString unfilled_35;
    QString unfilled_36;
    QString unfilled_37;
};

[[nodiscard]] struct_GLOBAL_ARTIFACT_cfstring_attributes
attribute_record_of(const extraction::copy_attributes &attributes);
