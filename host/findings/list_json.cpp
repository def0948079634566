#include "host/findings/list_json.h"

#include "text/dates/calendar.h"
#include "text/dates/iso_8601.h"
#include "text/stored_text.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>

namespace host {

namespace {

using formats::property_list_value;
using formats::value_kind;

constexpr int deepest_level = 520; // no readable list is nested deeper
constexpr int indent_columns = 2;

class writer
{
public:
    // Values of a binary list may be shared, so a short list could give a text without end.
    writer(const formats::property_list_parser &list, qint64 list_bytes)
        : list_(list)
        , bytes_left_(64 * list_bytes + (1 << 20))
    {
    }

    list_json write()
    {
        put_value(list_.root(), 0);
        json_.text += '\n';
        json_.is_whole = json_.is_whole && !list_.root().has_left_out();
        return std::move(json_);
    }

private:
    void put(const QByteArray &text)
    {
        bytes_left_ -= text.size();
        json_.text += text;
    }

    void put_line(int level) { put('\n' + QByteArray(indent_columns * level, ' ')); }

    void put_value(const property_list_value &value, int level)
    {
        if (bytes_left_ < 0 || level > deepest_level) {
            json_.is_whole = false;
            return put("null");
        }
        switch (value.kind()) {
        case value_kind::absent:
            return put("null");
        case value_kind::text:
            return put(json_text(value.text()));
        case value_kind::boolean:
            return put(value.integer_value() != 0 ? "true" : "false");
        case value_kind::number:
            return put_number(value);
        case value_kind::date:
            return put(json_text(text::iso_8601_utc(value.seconds_since_reference_date() +
                                                    double(text::seconds_1970_to_2001))));
        case value_kind::data:
            return put('"' + list_.contents()->data(value.node()).toBase64() + '"');
        case value_kind::array:
            return put_array(value, level);
        case value_kind::dictionary:
            return put_dictionary(value, level);
        }
    }

    void put_number(const property_list_value &number)
    {
        if (!number.is_floating())
            return put(QByteArray::number(number.integer_value()));
        const double value = number.double_value();
        const QByteArray digits = QByteArray::number(value, 'g', 17);
        put(std::isfinite(value) ? digits : '"' + digits + '"');
    }

    void put_array(const property_list_value &array, int level)
    {
        const int count = array.count();
        put("[");
        for (int i = 0; i < count && bytes_left_ >= 0; ++i) {
            put(i == 0 ? "" : ",");
            put_line(level + 1);
            put_value(array.at(i), level + 1);
        }
        end_container(count > 0, level, ']');
    }

    void put_dictionary(const property_list_value &dictionary, int level)
    {
        bool is_first = true;
        put("{");
        list_.contents()->visit_entries(dictionary.node(),
                                        [&](const QString &key, formats::property_list_node value) {
                                            put(is_first ? "" : ",");
                                            is_first = false;
                                            put_line(level + 1);
                                            put(json_text(key) + ": ");
                                            put_value(list_.at(value), level + 1);
                                            return bytes_left_ >= 0;
                                        });
        end_container(!is_first, level, '}');
    }

    void end_container(bool has_entries, int level, char end)
    {
        json_.is_whole = json_.is_whole && bytes_left_ >= 0;
        if (has_entries)
            put_line(level);
        put(QByteArray(1, end));
    }

    const formats::property_list_parser &list_;
    qint64 bytes_left_;
    list_json json_;
};

} // namespace

QByteArray json_text(const QString &text)
{
    const QString whole = text::whole_characters(text);
    const QByteArray list = QJsonDocument(QJsonArray{whole}).toJson(QJsonDocument::Compact);
    return list.mid(1, list.size() - 2);
}

list_json json_of(const formats::property_list_parser &list, qint64 list_bytes)
{
    return writer(list, list_bytes).write();
}

} // namespace host
