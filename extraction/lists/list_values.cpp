#include "extraction/lists/list_values.h"

namespace extraction {

namespace {

constexpr int seconds_digits = 10; // of a time stamp between 2001 and 2286

} // namespace

QString trimmed_text(const formats::property_list_value &dictionary, const QString &key)
{
    return dictionary.value(key).text().trimmed();
}

QString seconds_text(const formats::property_list_value &dictionary, const QString &key)
{
    return trimmed_text(dictionary, key).left(seconds_digits);
}

formats::property_list_value dictionary_of(const formats::property_list_value &parent,
                                           const QString &key)
{
    const formats::property_list_value value = parent.value(key);
    return value.is(formats::value_kind::dictionary) ? value : formats::property_list_value();
}

QString recorded_path(const formats::property_list_value &parent, const QString &key)
{
    return trimmed_text(dictionary_of(parent, key), QStringLiteral("Path"));
}

} // namespace extraction
