// Turns stored values into those that are handed out.
#pragma once

#include "formats/attributes/spotlight_value.h"
#include "formats/spotlight_store/tables/spotlight_tables.h"

#include <optional>
#include <string_view>

namespace formats {

// Decodes the values of one record. Make a new one for the next record: what a record may expand to
// is limited, since a few bytes can name the same long text many times.
class spotlight_value_decoder
{
public:
    // Tables and budget must outlive the decoder.
    spotlight_value_decoder(const spotlight_tables &tables, spotlight_budget *budget)
        : tables_(tables)
        , budget_(budget)
    {
    }

    // `stored`: what spotlight_attribute_walk::value() gave for that type. Nullopt when there is
    // nothing to hand out: raw data, an empty list, a date out of range, a reference to no text,
    // and what is too long or too costly. Of texts in several languages the English one is taken,
    // else the first.
    [[nodiscard]] std::optional<spotlight_value> decode(const spotlight_attribute_type &type,
                                                        std::string_view stored);

private:
    [[nodiscard]] std::optional<spotlight_value> from_text(quint8 flags, std::string_view stored);
    [[nodiscard]] std::optional<spotlight_value> from_table(quint8 flags, std::string_view stored);
    [[nodiscard]] std::optional<spotlight_value> text(std::string_view utf8);
    [[nodiscard]] std::optional<spotlight_value>
    text_list(const std::vector<std::string_view> &texts);
    // To be asked before the work is done.
    [[nodiscard]] bool afford(size_t bytes, size_t objects);
    [[nodiscard]] bool afford_all(const std::vector<std::string_view> &texts);

    const spotlight_tables &tables_;
    spotlight_budget *budget_;
    qint64 units_left_ = qint64(16) * 1024 * 1024;
};

// The form for the reader of a report: the one marked `en`, else the first; without its mark.
// Nullopt for no forms at all.
[[nodiscard]] std::optional<std::string_view>
preferred_language(const std::vector<std::string_view> &forms);

} // namespace formats
