#include "platform/foundation_value_readers.h"

#include "platform/foundation_values.h"
#include "text/dates/date_parsing.h"
#include "text/foundation_numbers.h"

namespace platform {

namespace {

using formats::property_list_value;
using formats::value_kind;

constexpr char label_separator[] = ":+:";
constexpr char boolean_class[] = "__NSCFBoolean";

using class_test = bool (*)(const property_list_value &value);

// How a failing second look-up is logged.
struct failure_line
{
    const char *words = "";
    const char *signature = "";
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
                                  const failure_line &failure, const QString &key_text,
                                  const run::log_sink *log)
{
    if (!expected(look_up(key, dictionary)))
        return {};
    const property_list_value value = look_up(key, dictionary);
    if (expected(value))
        return value;
    if (log != nullptr)
        log->write(failure.words, key_text, failure.signature);
    return {};
}

property_list_value look_up_labelled(void *key, void *dictionary, class_test expected)
{
    return look_up_twice(key, dictionary, expected, {}, QString(), nullptr);
}

bool is_absent(const property_list_value &value)
{
    return value.is(value_kind::absent);
}

qint64 whole_number(const property_list_value &value)
{
    return text::truncated_to_int64(value.double_value());
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

QString get_nsstring_values(void *key, void *dictionary, const run::log_sink &log)
{
    const release_pool pool;
    return look_up_twice(key, dictionary, is_text, text_failure, text_of_key(key), &log)
        .text()
        .trimmed();
}

QString get_nsnumber_values(void *key, void *dictionary, const run::log_sink &log)
{
    const release_pool pool;
    const property_list_value value =
        look_up_twice(key, dictionary, is_number, number_failure, text_of_key(key), &log);
    return is_absent(value) ? QString() : QString::number(whole_number(value));
}

QString get_nsnumber_values_yes_no(void *key, void *dictionary, const run::log_sink &log)
{
    const release_pool pool;
    const property_list_value value = look_up_twice(key, dictionary, is_boolean, yes_no_failure,
                                                    text_of_key(key).trimmed(), &log);
    return is_absent(value) ? QString() : yes_or_no(whole_number(value));
}

QString get_nsnumber_key_and_value_yes_no(void *key, void *dictionary, const QString &label)
{
    const release_pool pool;
    const property_list_value value = look_up_labelled(key, dictionary, is_number);
    return is_absent(value) ? QString() : labelled(label, yes_or_no(whole_number(value)));
}

QString get_nsstring_key_and_values(void *key, void *dictionary, const QString &label)
{
    const release_pool pool;
    const property_list_value value = look_up_labelled(key, dictionary, is_text);
    return is_absent(value) ? QString() : labelled(label, value.text().trimmed());
}

QString get_nsnumber_key_and_values(void *key, void *dictionary, const QString &label)
{
    const release_pool pool;
    const property_list_value value = look_up_labelled(key, dictionary, is_number);
    return is_absent(value) ? QString() : labelled(label, QString::number(whole_number(value)));
}

QString get_nsarray_key_and_values(void *key, void *dictionary, const QString &label)
{
    const release_pool pool;
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

qint64 convert_nsdate_to_epoch(NSDate *date, NSObject *object)
{
    const auto formatted = formatted_local_date(date, object);
    return formatted ? text::epoch_from_formatted_local_date(*formatted) : 0;
}

} // namespace platform
