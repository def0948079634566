// The name tables that the records of a store refer to: attribute types, texts, lists of texts.
#pragma once

#include "formats/spotlight_store/tables/spotlight_table.h"

#include <string_view>
#include <vector>

namespace formats {

// How an attribute is stored. The same name occurs under several indexes with different types.
struct spotlight_attribute_type
{
    quint32 index = 0;
    quint8 value_type = 0;
    quint8 flags = 0;
    bool is_file_name = false; // the attribute that paths are built from
    std::string_view name;     // valid as long as the tables
};

constexpr quint8 spotlight_many_flag = 0x02;
constexpr quint8 spotlight_localized_flags = 0x03; // both bits

// Number of texts that a list may have; longer ones are left out.
constexpr quint64 max_spotlight_list_length = 65536;

class spotlight_tables
{
public:
    // Raw forms of the tables. `attributes`: value type, flags, name. `texts`: text. `lists` and
    // `localized_lists`: signed 32-bit indexes of texts. Texts and names without their NUL.
    struct raw_tables
    {
        spotlight_table attributes;
        spotlight_table texts;
        spotlight_table lists;
        spotlight_table localized_lists;
        int incomplete = 0; // tables of which a part cannot be read
    };

    explicit spotlight_tables(raw_tables raw);
    spotlight_tables(const spotlight_tables &) = delete;
    spotlight_tables &operator=(const spotlight_tables &) = delete;

    // Without a name of any attribute no record can be understood, and without that of the
    // attribute that names files none belongs to a file.
    [[nodiscard]] bool has_attributes() const { return !attributes_.empty(); }
    [[nodiscard]] bool names_files() const { return names_files_; }
    [[nodiscard]] int incomplete() const { return raw_.incomplete; }
    // Null when there is no such attribute.
    [[nodiscard]] const spotlight_attribute_type *attribute(quint64 index) const;
    // UTF-8 as stored, the mark of its language included; nullopt when there is no such text.
    [[nodiscard]] std::optional<std::string_view> text(quint64 index) const;
    // Elements that the list claims to have; 0 for no list.
    [[nodiscard]] size_t list_length(quint64 index) const;
    [[nodiscard]] size_t localized_list_length(quint64 index) const;
    // The texts of a list in its order. Negative indexes, and those without a text, are left out.
    [[nodiscard]] std::vector<std::string_view> list(quint64 index) const;
    [[nodiscard]] std::vector<std::string_view> localized_list(quint64 index) const;

private:
    [[nodiscard]] std::vector<std::string_view> texts_of(const spotlight_table &lists,
                                                         quint64 index) const;

    raw_tables raw_;
    std::vector<spotlight_attribute_type> attributes_; // by index
    bool names_files_ = false;
    std::vector<quint32> direct_; // place in attributes_ + 1 of the low indexes; 0 = none
};

} // namespace formats
