#include "property_list.h"

#include "property_list_limits.h"

namespace platform {

QString property_list_reader::within_limit(QString text) const
{
    if (text.size() <= longest_text_units)
        return text;
    has_cut_text_ = true;
    const bool tears_pair = text.at(longest_text_units - 1).isHighSurrogate() &&
                            text.at(longest_text_units).isLowSurrogate();
    text.truncate(tears_pair ? longest_text_units - 1 : longest_text_units);
    return text;
}

} // namespace platform
