#include "inventory/reading/list_values.h"

#include "inventory/reading/sha256.h"
#include "text/stored_text.h"

namespace inventory {

namespace {

using formats::property_list_node;
using formats::property_list_value;
using formats::value_kind;

constexpr int shown_data_bytes = 4096;
constexpr int deepest_level = 520; // no readable list is nested deeper

const char *class_of(value_kind kind)
{
    switch (kind) {
    case value_kind::text:
        return "text";
    case value_kind::number:
        return "number";
    case value_kind::boolean:
        return "boolean";
    case value_kind::date:
        return "date";
    case value_kind::data:
        return "data";
    case value_kind::array:
        return "array";
    case value_kind::dictionary:
        return "dictionary";
    case value_kind::absent:
        break;
    }
    return "unreadable";
}

// A "/" in a key is no border between keys.
QByteArray path_part(const QString &key)
{
    QByteArray part = text::stored_utf8(key);
    if (part.contains('\\') || part.contains('/'))
        part.replace('\\', "\\\\").replace('/', "\\/");
    return part;
}

class collector
{
public:
    collector(const formats::property_list_parser &list, const value_limits &limits,
              std::vector<stored_value> *values)
        : list_(list)
        , limits_(limits)
        , values_(values)
    {
    }

    bool run()
    {
        take_inside(list_.root_node(), QByteArray(), 0);
        return is_whole_ && !list_.root().has_left_out() && !list_.root().take_cut_text();
    }

private:
    // The values inside of a container at `path`.
    void take_inside(property_list_node node, const QByteArray &path, int level)
    {
        const property_list_value container = list_.at(node);
        const QByteArray prefix = path.isEmpty() ? path : path + '/';
        if (container.is(value_kind::dictionary)) {
            list_.contents()->visit_entries(
                node, [&](const QString &key, property_list_node value) {
                    return take(list_.at(value), value, prefix + path_part(key), level);
                });
        } else if (container.is(value_kind::array)) {
            take_elements(container, prefix, level);
        }
    }

    void take_elements(const property_list_value &array, const QByteArray &prefix, int level)
    {
        const bool is_queue = level == 1 && prefix == "Items/";
        const int count = array.count();
        for (int i = 0; i < count && is_whole_; ++i) {
            if (is_queue)
                item_ = i;
            const property_list_value element = array.at(i);
            take(element, element.node(), prefix + QByteArray::number(i), level);
        }
        if (is_queue)
            item_ = -1;
    }

    bool take(const property_list_value &value, property_list_node node, const QByteArray &path,
              int level)
    {
        stored_value stored;
        stored.item = item_;
        stored.path = path;
        const value_kind kind = value.kind();
        stored.value_class = class_of(kind);
        if (!charge(path.size()) || level > deepest_level)
            return leave_out();
        if (kind == value_kind::data)
            take_data(node, &stored);
        else if (kind == value_kind::text)
            stored.text = text::stored_utf8(value.text());
        else if (kind == value_kind::array || kind == value_kind::dictionary)
            stored.text = QByteArray::number(value.count());
        else if (kind != value_kind::absent)
            stored.text = text::stored_utf8(list_.contents()->literal(node));
        if (!charge(stored.text.size()))
            return leave_out();
        values_->push_back(std::move(stored));
        if (kind == value_kind::array || kind == value_kind::dictionary)
            take_inside(node, path, level + 1);
        return is_whole_;
    }

    void take_data(property_list_node node, stored_value *stored) const
    {
        const QByteArray data = list_.contents()->data(node);
        stored->bytes = data.size();
        stored->text = data.left(shown_data_bytes).toHex();
        if (data.size() > shown_data_bytes)
            stored->sha256 = sha256_of(data);
    }

    bool charge(qint64 text_bytes)
    {
        limits_.text_bytes -= text_bytes;
        return qint64(values_->size()) < limits_.count && limits_.text_bytes >= 0;
    }

    bool leave_out()
    {
        is_whole_ = false;
        return false;
    }

    const formats::property_list_parser &list_;
    value_limits limits_;
    std::vector<stored_value> *values_;
    int item_ = -1;
    bool is_whole_ = true;
};

} // namespace

value_limits value_limits_of(qint64 list_bytes)
{
    constexpr qint64 least = 1 << 20;
    return {list_bytes + 1000, 4 * list_bytes + least};
}

bool collect_values(const formats::property_list_parser &list, const value_limits &limits,
                    std::vector<stored_value> *values)
{
    return collector(list, limits, values).run();
}

} // namespace inventory
