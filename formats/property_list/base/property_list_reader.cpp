#include "formats/property_list/base/property_list_value.h"

#include "formats/property_list/base/property_list_limits.h"

namespace formats {

QString property_list_reader::within_limit(QString text) const
{
    if (text.size() <= max_text_units)
        return text;
    has_cut_text_ = true;
    const bool tears_pair =
        text.at(max_text_units - 1).isHighSurrogate() && text.at(max_text_units).isLowSurrogate();
    text.truncate(tears_pair ? max_text_units - 1 : max_text_units);
    return text;
}

} // namespace formats
