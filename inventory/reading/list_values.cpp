#include "inventory/reading/list_values.h"

#include "text/stored_text.h"

#include <QCryptographicHash>

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
QString path_part(QString key)
{
    if (key.contains(QLatin1Char('\\')) || key.contains(QLatin1Char('/')))
        key.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
            .replace(QLatin1Char('/'), QLatin1String("\\/"));
    return key;
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
        take_inside(list_.root_node(), QString(), 0);
        return is_whole_ && !list_.root().has_left_out() && !list_.root().take_cut_text();
    }

private:
    // The values inside of a container at `path`.
    void take_inside(property_list_node node, const QString &path, int level)
    {
        const property_list_value container = list_.at(node);
        const QString prefix = path.isEmpty() ? path : path + QLatin1Char('/');
        if (container.is(value_kind::dictionary)) {
            list_.contents()->visit_entries(
                node, [&](const QString &key, property_list_node value) {
                    return take(list_.at(value), value, prefix + path_part(key), level);
                });
        } else if (container.is(value_kind::array)) {
            take_elements(container, prefix, level);
        }
    }

    void take_elements(const property_list_value &array, const QString &prefix, int level)
    {
        const bool is_queue = level == 1 && prefix == QLatin1String("Items/");
        const int count = array.count();
        for (int i = 0; i < count && is_whole_; ++i) {
            if (is_queue)
                item_ = i;
            const property_list_value element = array.at(i);
            take(element, element.node(), prefix + QString::number(i), level);
        }
        if (is_queue)
            item_ = -1;
    }

    bool take(const property_list_value &value, property_list_node node, const QString &path,
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
            stored.text = value.text();
        else if (kind == value_kind::array || kind == value_kind::dictionary)
            stored.text = QString::number(value.count());
        else if (kind != value_kind::absent)
            stored.text = list_.contents()->literal(node);
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
        stored->text = QString::fromLatin1(data.left(shown_data_bytes).toHex());
        if (data.size() > shown_data_bytes)
            stored->sha256 = QCryptographicHash::hash(data, QCryptographicHash::Sha256).toHex();
    }

    bool charge(qint64 text_units)
    {
        limits_.text_bytes -= text_units;
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
