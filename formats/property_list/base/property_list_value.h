// One value of a property list, and what a reader of lists provides. A property_list_value is a
// cheap view into its reader, valid until that reads another list or is destroyed. Nothing here
// throws, logs or writes. Not thread-safe.
#pragma once

#include <QString>

#include <utility>

namespace formats {

// What a value is. `absent` stands for a missing key, an index out of range, or a value that the
// file does not hold completely.
enum class value_kind { absent, text, number, boolean, date, data, array, dictionary };

// Names one value inside a reader; its meaning is the reader's own business.
using property_list_node = quintptr;

// What a platform provides for one loaded list.
class property_list_reader
{
public:
    virtual ~property_list_reader() = default;

    // Each takes a node that the reader handed out itself. A node of another kind than the
    // operation is for gives the empty result of that operation.
    [[nodiscard]] virtual value_kind kind(property_list_node node) const = 0;
    // Class name that Foundation reports for the value, e.g. "__NSCFBoolean" for a boolean.
    [[nodiscard]] virtual QString class_name(property_list_node node) const = 0;
    // The text as stored, not trimmed; null unless the value is a text. An empty text is not null.
    // The end of a text beyond the limit is left out.
    [[nodiscard]] virtual QString text(property_list_node node) const = 0;
    // Foundation's doubleValue: of a number, a boolean (1 or 0) or a text (its leading decimal
    // number, else 0); 0 for every other kind.
    [[nodiscard]] virtual double double_value(property_list_node node) const = 0;
    // Seconds since 2001-01-01 00:00:00 UTC of a date; 0 for every other kind.
    [[nodiscard]] virtual double seconds_since_reference_date(property_list_node node) const = 0;
    // Whether a number is stored as a floating-point number; false for every other kind.
    [[nodiscard]] virtual bool is_floating(property_list_node node) const = 0;
    // A whole number as stored, wrapped into 64 bits; 0 for every other kind. Booleans give 1 or 0.
    [[nodiscard]] virtual qint64 integer_value(property_list_node node) const = 0;
    // Elements of an array or entries of a dictionary; 0 for every other kind.
    [[nodiscard]] virtual int count(property_list_node node) const = 0;
    // Both return false, and leave *found alone, when there is no such value.
    virtual bool look_up(property_list_node dictionary, const QString &key,
                         property_list_node *found) const = 0;
    virtual bool element(property_list_node array, int index, property_list_node *found) const = 0;

    // Whether text() has cut a text since the last call.
    [[nodiscard]] bool take_cut_text() const { return std::exchange(has_cut_text_, false); }

    // Whether values of the list were handed out as absent because reading them costs too much.
    [[nodiscard]] bool has_left_out() const { return has_left_out_; }
    // Whether the list has used up what one list may cost. From now on its values are absent.
    [[nodiscard]] bool is_spent() const { return is_spent_; }

protected:
    void note_left_out() const { has_left_out_ = true; }
    void note_spent() const { has_left_out_ = is_spent_ = true; }
    // For a list that is loaded anew.
    void forget_left_out() const { has_left_out_ = is_spent_ = false; }
    // For text(): `text` up to the limit, no surrogate pair torn apart.
    [[nodiscard]] QString within_limit(QString text) const;

private:
    mutable bool has_cut_text_ = false;
    mutable bool has_left_out_ = false;
    mutable bool is_spent_ = false;
};

class property_list_value
{
public:
    property_list_value() = default; // absent
    property_list_value(const property_list_reader *reader, property_list_node node)
        : reader_(reader)
        , node_(node)
    {
    }

    [[nodiscard]] property_list_node node() const { return node_; }
    [[nodiscard]] value_kind kind() const
    {
        return reader_ == nullptr ? value_kind::absent : reader_->kind(node_);
    }
    [[nodiscard]] bool is(value_kind expected) const { return kind() == expected; }
    // A boolean is also a number, as for Foundation.
    [[nodiscard]] bool is_number() const
    {
        const value_kind own = kind();
        return own == value_kind::number || own == value_kind::boolean;
    }
    [[nodiscard]] QString class_name() const
    {
        return reader_ == nullptr ? QString() : reader_->class_name(node_);
    }
    [[nodiscard]] QString text() const
    {
        return reader_ == nullptr ? QString() : reader_->text(node_);
    }
    // These three, of any value of the same list.
    [[nodiscard]] bool has_left_out() const
    {
        return reader_ != nullptr && reader_->has_left_out();
    }
    [[nodiscard]] bool is_spent() const { return reader_ != nullptr && reader_->is_spent(); }
    [[nodiscard]] bool take_cut_text() const
    {
        return reader_ != nullptr && reader_->take_cut_text();
    }
    [[nodiscard]] double double_value() const
    {
        return reader_ == nullptr ? 0.0 : reader_->double_value(node_);
    }
    [[nodiscard]] double seconds_since_reference_date() const
    {
        return reader_ == nullptr ? 0.0 : reader_->seconds_since_reference_date(node_);
    }
    [[nodiscard]] bool is_floating() const
    {
        return reader_ != nullptr && reader_->is_floating(node_);
    }
    [[nodiscard]] qint64 integer_value() const
    {
        return reader_ == nullptr ? 0 : reader_->integer_value(node_);
    }
    [[nodiscard]] int count() const { return reader_ == nullptr ? 0 : reader_->count(node_); }
    // Absent when this is no dictionary or has no such key.
    [[nodiscard]] property_list_value value(const QString &key) const
    {
        property_list_node found = 0;
        if (reader_ == nullptr || !reader_->look_up(node_, key, &found))
            return {};
        return {reader_, found};
    }
    // Absent when this is no array or the index is outside of it.
    [[nodiscard]] property_list_value at(int index) const
    {
        property_list_node found = 0;
        if (reader_ == nullptr || !reader_->element(node_, index, &found))
            return {};
        return {reader_, found};
    }

private:
    const property_list_reader *reader_ = nullptr;
    property_list_node node_ = 0;
};

} // namespace formats
