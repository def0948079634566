// Turns stored values into those that are handed out.
#pragma once

#include "platform/spotlight_value.h"
#include "spotlight_tables.h"

#include <optional>
#include <string_view>

namespace platform {

// Decodes the values of one record. Make a new one for the next record: the amount of text that a
// record may expand to is limited, since a few bytes can name the same long text many times.
class spotlight_value_decoder
{
public:
    // The tables must outlive the decoder.
    explicit spotlight_value_decoder(const spotlight_tables &tables)
        : tables_(tables)
    {
    }

    // `stored`: what spotlight_attribute_walk::value() gave for that type. Nullopt when there is
    // nothing to hand out: raw data, an empty list, a date out of range, a reference to no text.
    // Of texts in several languages the English one is taken, else the first.
    [[nodiscard]] std::optional<spotlight_value> decode(const spotlight_attribute_type &type,
                                                        std::string_view stored);

private:
    [[nodiscard]] std::optional<spotlight_value> from_text(quint8 flags, std::string_view stored);
    [[nodiscard]] std::optional<spotlight_value> from_table(quint8 flags, std::string_view stored);
    [[nodiscard]] std::optional<spotlight_value> text(std::string_view utf8);
    [[nodiscard]] std::optional<spotlight_value>
    text_list(const std::vector<std::string_view> &texts);
    [[nodiscard]] bool afford(size_t text_bytes);

    const spotlight_tables &tables_;
    size_t text_bytes_left_ = size_t(64) * 1024 * 1024;
};

// The form for the reader of a report: the one marked `en`, else the first; without its mark.
// Nullopt for no forms at all.
[[nodiscard]] std::optional<std::string_view>
preferred_language(const std::vector<std::string_view> &forms);

} // namespace platform
