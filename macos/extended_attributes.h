// What is known of a transferred file's local copy, as texts.
#pragma once

#include <QString>

// Spotlight attributes of one file. All null when made; this plug-in fills the first 14. Dates are
// seconds since 1970 UTC.
struct struct_GLOBAL_ARTIFACT_cfstring_attributes
{
    QString date_added;
    QString content_creation_date;
    QString content_modification_date;
    QString content_type;
    QString kind;
    QString fs_content_change_date;
    QString fs_creation_date;
    QString fs_name;
    QString fs_node_count;
    QString where_from;        // parted by ";"
    QString latitude;          // degrees, negative in the south
    QString longitude;         // degrees, negative in the west
    QString altitude;          // metres
    QString torrent_file_list; // parted by ";"
    QString unfilled_15;
    QString attr_file_type; // not filled: the column of that name stays empty
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
