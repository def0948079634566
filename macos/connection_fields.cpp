#include "connection_fields.h"

#include "extractor_run.h"

namespace macos {

namespace {

constexpr key_field<connection_fields> text_keys[] = {
    {"Protocol", &connection_fields::protocol}, {"UUID", &connection_fields::uuid},
    {"Hostname", &connection_fields::hostname}, {"Port", &connection_fields::port},
    {"Username", &connection_fields::username}, {"Comment", &connection_fields::comment},
};

} // namespace

void read_connection(const platform::property_list_value &dictionary, connection_fields *fields)
{
    read_texts(dictionary, text_keys, fields);
    fields->access_timestamp = seconds_text(dictionary, "Access Timestamp");
}

} // namespace macos
