#include "extraction/lists/connection_fields.h"

#include "extraction/lists/list_values.h"

namespace extraction {

namespace {

const key_field<connection_fields> text_keys[] = {
    {QStringLiteral("Protocol"), &connection_fields::protocol},
    {QStringLiteral("UUID"), &connection_fields::uuid},
    {QStringLiteral("Hostname"), &connection_fields::hostname},
    {QStringLiteral("Port"), &connection_fields::port},
    {QStringLiteral("Username"), &connection_fields::username},
    {QStringLiteral("Comment"), &connection_fields::comment},
};

} // namespace

void read_connection(const formats::property_list_value &dictionary, connection_fields *fields)
{
    read_texts(dictionary, text_keys, fields);
    fields->access_timestamp = seconds_text(dictionary, QStringLiteral("Access Timestamp"));
}

} // namespace extraction
