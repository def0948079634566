#include "formats/spotlight_store/spotlight_value_decoder.h"

#include "formats/spotlight_store/blocks/spotlight_cursor.h"
#include "formats/spotlight_store/spotlight_record.h"
#include "formats/spotlight_store/blocks/spotlight_utf8.h"
#include "text/dates/calendar.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace formats {

namespace {

constexpr std::string_view language_mark = "\x16\x02"; // between a text and its language code
constexpr std::string_view english = "en";
constexpr quint64 no_text_index = 0xfeffffff;
constexpr size_t max_text_bytes = size_t(1024) * 1024;
constexpr double max_date_seconds = 1e11; // beyond the calendar that dates are printed in

using scalar = std::optional<spotlight_scalar>;

std::string_view without_language(std::string_view text)
{
    return text.substr(0, text.find(language_mark));
}

scalar integer(quint8 value_type, quint64 number)
{
    if (value_type == spotlight_boolean)
        return number != 0;
    if (value_type == spotlight_int64)
        return static_cast<qint64>(number);
    // An unsigned number that does not fit would turn negative.
    if (number > static_cast<quint64>(std::numeric_limits<qint64>::max()))
        return std::nullopt;
    return static_cast<qint64>(number);
}

scalar floating(quint8 value_type, std::string_view bytes)
{
    if (value_type == spotlight_single) {
        const quint32 bits = little_endian_u32(bytes, 0);
        float number = 0;
        std::memcpy(&number, &bits, sizeof number);
        return spotlight_floating{static_cast<double>(number), true};
    }
    const quint64 bits = little_endian_u64(bytes, 0);
    double number = 0;
    std::memcpy(&number, &bits, sizeof number);
    if (value_type == spotlight_double)
        return spotlight_floating{number, false};
    if (!std::isfinite(number) || std::fabs(number) > max_date_seconds)
        return std::nullopt;
    return spotlight_date{number + static_cast<double>(text::seconds_1970_to_2001)};
}

std::optional<spotlight_value> single_value(const scalar &value)
{
    if (!value)
        return std::nullopt;
    return std::visit([](const auto &content) { return spotlight_value(content); }, *value);
}

std::optional<spotlight_value> list_value(spotlight_list list)
{
    if (list.empty())
        return std::nullopt;
    return std::optional<spotlight_value>(std::in_place, std::move(list));
}

std::optional<spotlight_value> from_varints(const spotlight_attribute_type &type,
                                            std::string_view stored)
{
    spotlight_cursor input(stored);
    quint64 number = 0;
    const quint64 size = natural_size(type.value_type);
    if (!input.read_varint(&number))
        return std::nullopt;
    if (size == 0 || (type.flags & spotlight_many_flag) == 0)
        return single_value(integer(type.value_type, number));
    spotlight_list list;
    if (number / size > max_spotlight_list_length)
        return std::nullopt;
    while (input.read_varint(&number)) {
        if (const scalar element = integer(type.value_type, number))
            list.push_back(*element);
    }
    return list_value(std::move(list));
}

std::optional<spotlight_value> from_floats(const spotlight_attribute_type &type,
                                           std::string_view stored)
{
    spotlight_cursor input(stored);
    const quint64 size = natural_size(type.value_type);
    std::string_view bytes;
    if ((type.flags & spotlight_many_flag) == 0)
        return input.take(size, &bytes) ? single_value(floating(type.value_type, bytes))
                                        : std::nullopt;
    quint64 length = 0;
    if (!input.read_varint(&length) || length / size > max_spotlight_list_length)
        return std::nullopt;
    spotlight_list list;
    while (input.take(size, &bytes)) {
        if (const scalar element = floating(type.value_type, bytes))
            list.push_back(*element);
    }
    return list_value(std::move(list));
}

// Empty pieces are texts too; only what follows the last NUL is none if it is empty.
std::vector<std::string_view> split_at_nul(std::string_view bytes)
{
    std::vector<std::string_view> pieces;
    spotlight_cursor input(bytes);
    std::string_view piece;
    while (pieces.size() <= max_spotlight_list_length && input.take_terminated(&piece))
        pieces.push_back(piece);
    if (input.left() > 0)
        pieces.push_back(input.rest());
    return pieces;
}

} // namespace

std::optional<std::string_view> preferred_language(const std::vector<std::string_view> &forms)
{
    for (const std::string_view form : forms) {
        const size_t mark = form.find(language_mark);
        if (mark != std::string_view::npos && form.substr(mark + language_mark.size()) == english)
            return form.substr(0, mark);
    }
    if (forms.empty())
        return std::nullopt;
    return without_language(forms.front());
}

std::optional<spotlight_value> spotlight_value_decoder::decode(const spotlight_attribute_type &type,
                                                               std::string_view stored)
{
    const bool is_list = (type.flags & spotlight_many_flag) != 0;
    if (!afford(stored.size(),
                is_list ? std::min(stored.size(), size_t{max_spotlight_list_length}) : 1))
        return std::nullopt;
    switch (type.value_type) {
    case spotlight_boolean:
    case spotlight_byte:
    case spotlight_int32:
    case spotlight_int64:
    case spotlight_uint64:
        return from_varints(type, stored);
    case spotlight_single:
    case spotlight_double:
    case spotlight_date_value:
        return from_floats(type, stored);
    case spotlight_text:
        return from_text(type.flags, stored);
    case spotlight_table_index:
        return from_table(type.flags, stored);
    default:
        return std::nullopt;
    }
}

std::optional<spotlight_value> spotlight_value_decoder::from_text(quint8 flags,
                                                                  std::string_view stored)
{
    spotlight_cursor input(stored);
    quint64 length = 0;
    std::string_view bytes;
    if (!input.read_varint(&length) || !input.take(length, &bytes))
        return std::nullopt;
    if ((flags & spotlight_many_flag) == 0)
        return text(bytes.substr(0, bytes.find('\0')));
    const std::vector<std::string_view> pieces = split_at_nul(bytes);
    if ((flags & spotlight_localized_flags) != spotlight_localized_flags)
        return text_list(pieces);
    const auto form = afford_all(pieces) ? preferred_language(pieces) : std::nullopt;
    return form ? text(*form) : std::nullopt;
}

std::optional<spotlight_value> spotlight_value_decoder::from_table(quint8 flags,
                                                                   std::string_view stored)
{
    spotlight_cursor input(stored);
    quint64 index = 0;
    if (!input.read_varint(&index) || index == no_text_index)
        return std::nullopt;
    std::optional<std::string_view> form;
    if ((flags & spotlight_localized_flags) == spotlight_localized_flags) {
        if (!afford(0, tables_.localized_list_length(index)))
            return std::nullopt;
        const std::vector<std::string_view> forms = tables_.localized_list(index);
        if (afford_all(forms))
            form = preferred_language(forms);
    } else if ((flags & spotlight_many_flag) != 0) {
        if (!afford(0, tables_.list_length(index)))
            return std::nullopt;
        std::vector<std::string_view> texts = tables_.list(index);
        if (!afford_all(texts))
            return std::nullopt;
        std::transform(texts.begin(), texts.end(), texts.begin(), without_language);
        return text_list(texts);
    } else if (const auto found = tables_.text(index); found && afford(found->size(), 1)) {
        form = without_language(*found);
    }
    return form ? text(*form) : std::nullopt;
}

std::optional<spotlight_value> spotlight_value_decoder::text(std::string_view utf8)
{
    if (utf8.size() > max_text_bytes || !afford(utf8.size(), 1))
        return std::nullopt;
    return std::optional<spotlight_value>(std::in_place, text_from_utf8(utf8));
}

// A list that is too long is left out as a whole: a part of it would be another value.
std::optional<spotlight_value>
spotlight_value_decoder::text_list(const std::vector<std::string_view> &texts)
{
    if (texts.size() > max_spotlight_list_length || !afford_all(texts))
        return std::nullopt;
    spotlight_list list;
    for (const std::string_view utf8 : texts)
        list.emplace_back(text_from_utf8(utf8));
    return list_value(std::move(list));
}

bool spotlight_value_decoder::afford(size_t bytes, size_t objects)
{
    const qint64 units =
        static_cast<qint64>(bytes) + static_cast<qint64>(objects) * spotlight_object_units;
    if (units > units_left_)
        return false;
    units_left_ -= units;
    return budget_->charge(units);
}

bool spotlight_value_decoder::afford_all(const std::vector<std::string_view> &texts)
{
    size_t bytes = 0;
    for (const std::string_view text : texts)
        bytes += text.size();
    return afford(bytes, texts.size());
}

} // namespace formats
