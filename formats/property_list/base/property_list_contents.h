// What a whole list holds, for those who want every value and not certain keys.
#pragma once

#include "formats/property_list/base/property_list_value.h"

#include <QByteArray>

#include <functional>

namespace formats {

// The readers of bytes offer this beside property_list_reader; the nodes are the same. What these
// calls cost is charged to the list like other questions.
class property_list_contents
{
public:
    virtual ~property_list_contents() = default;

    // Gets the key and the value of an entry. A false ends the visit.
    using entry_visitor = std::function<bool(const QString &key, property_list_node value)>;
    // Visits the entries of a dictionary as they stand in the list, equal keys included. The value
    // may be absent. Nothing for any other kind.
    virtual void visit_entries(property_list_node dictionary, const entry_visitor &visit) const = 0;
    // A number, boolean or date as text. XML: as it is written. Binary: in decimal, "true" or
    // "false", or ISO 8601 in UTC. Null for any other kind.
    [[nodiscard]] virtual QString literal(property_list_node scalar) const = 0;
    // The bytes of data. Null for any other kind, and where they are not base64.
    [[nodiscard]] virtual QByteArray data(property_list_node node) const = 0;
};

} // namespace formats
