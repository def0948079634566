// Single values of a dictionary that another program part holds, as texts.
//
// Each value is looked up twice, as the host's other readers do: the first look-up decides whether
// there is one, the second gives it. A dictionary that has changed in between is a failure that the
// plain readers log.
#include "plugin_static_function.h"

#include "foundation_numbers.h"
#include "platform/foundation_values.h"

using platform::property_list_value;
using platform::value_kind;

namespace {

constexpr char label_separator[] = ":+:";
constexpr char boolean_class[] = "__NSCFBoolean";

using class_test = bool (*)(const property_list_value &value);

// How a failing second look-up is logged; no words: not at all.
struct failure_line
{
    const char *words = nullptr;
    const char *signature = nullptr;
};

constexpr failure_line text_failure = {
    "[get_nsstring_values]-----FAILED----- to get value: ",
    "static QString plugin_static_function::get_nsstring_values(void *, void *)"};
constexpr failure_line number_failure = {
    "[get_nsnumber_values]-----FAILED----- to get value: ",
    "static QString plugin_static_function::get_nsnumber_values(void *, void *)"};
constexpr failure_line yes_no_failure = {
    "[get_nsnumber_values_yes_no]-----FAILED----- to get value: ",
    "static QString plugin_static_function::get_nsnumber_values_yes_no(void *, void *)"};

bool is_text(const property_list_value &value)
{
    return value.is(value_kind::text);
}

bool is_number(const property_list_value &value)
{
    return value.is_number();
}

bool is_boolean(const property_list_value &value)
{
    return value.is_number() && value.class_name().trimmed() == QLatin1String(boolean_class);
}

bool is_array(const property_list_value &value)
{
    return value.is(value_kind::array);
}

property_list_value look_up_twice(void *key, void *dictionary, class_test expected,
                                  const failure_line &failure, const QString &key_text)
{
    if (!expected(platform::look_up(key, dictionary)))
        return {};
    const property_list_value value = platform::look_up(key, dictionary);
    if (expected(value))
        return value;
    if (failure.words != nullptr)
        plugin_static_function::app_debug(QLatin1String(failure.words) + key_text,
                                          QLatin1String(failure.signature));
    return {};
}

property_list_value look_up_labelled(void *key, void *dictionary, class_test expected)
{
    return look_up_twice(key, dictionary, expected, {}, QString());
}

bool is_absent(const property_list_value &value)
{
    return value.is(value_kind::absent);
}

qint64 whole_number(const property_list_value &value)
{
    return support::truncated_to_int64(value.double_value());
}

QString yes_or_no(qint64 number)
{
    if (number == 1)
        return QStringLiteral("YES");
    return number == 0 ? QStringLiteral("NO") : QString();
}

QString labelled(const QString &label, const QString &value)
{
    return label + QLatin1String(label_separator) + value;
}

} // namespace

QString plugin_static_function::convert_cfstring_to_qstring(const __CFString *text)
{
    return platform::text_of_cfstring(text);
}

QString plugin_static_function::get_nsstring_values(void *key, void *dictionary)
{
    const platform::release_pool pool;
    return look_up_twice(key, dictionary, is_text, text_failure, platform::text_of_key(key))
        .text()
        .trimmed();
}

QString plugin_static_function::get_nsnumber_values(void *key, void *dictionary)
{
    const platform::release_pool pool;
    const property_list_value value =
        look_up_twice(key, dictionary, is_number, number_failure, platform::text_of_key(key));
    return is_absent(value) ? QString() : QString::number(whole_number(value));
}

QString plugin_static_function::get_nsnumber_values_yes_no(void *key, void *dictionary)
{
    const platform::release_pool pool;
    const property_list_value value = look_up_twice(key, dictionary, is_boolean, yes_no_failure,
                                                    platform::text_of_key(key).trimmed());
    return is_absent(value) ? QString() : yes_or_no(whole_number(value));
}

QString plugin_static_function::get_nsnumber_key_and_value_yes_no(void *key, void *dictionary,
                                                                  QString label)
{
    const platform::release_pool pool;
    const property_list_value value = look_up_labelled(key, dictionary, is_number);
    return is_absent(value) ? QString() : labelled(label, yes_or_no(whole_number(value)));
}

QString plugin_static_function::get_nsstring_key_and_values(void *key, void *dictionary,
                                                            QString label)
{
    const platform::release_pool pool;
    const property_list_value value = look_up_labelled(key, dictionary, is_text);
    return is_absent(value) ? QString() : labelled(label, value.text().trimmed());
}

QString plugin_static_function::get_nsnumber_key_and_values(void *key, void *dictionary,
                                                            QString label)
{
    const platform::release_pool pool;
    const property_list_value value = look_up_labelled(key, dictionary, is_number);
    return is_absent(value) ? QString() : labelled(label, QString::number(whole_number(value)));
}

QString plugin_static_function::get_nsarray_key_and_values(void *key, void *dictionary,
                                                           QString label)
{
    const platform::release_pool pool;
    const property_list_value value = look_up_labelled(key, dictionary, is_array);
    if (is_absent(value))
        return {};
    QString joined = labelled(label, QString());
    const int count = value.count();
    for (int i = 0; i < count; ++i)
        joined += value.at(i).text().trimmed() + QLatin1Char(';');
    if (joined.endsWith(QLatin1Char(';')))
        joined.chop(1);
    return joined;
}
