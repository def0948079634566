// One name table of a store: bytes by index.
#pragma once

#include "formats/spotlight_store/blocks/spotlight_budget.h"

#include <QtGlobal>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace formats {

constexpr quint32 max_spotlight_index = 1U << 24; // above any real table

// Filled once, then asked. An index that occurs twice keeps the later bytes.
class spotlight_table
{
public:
    // Copies the bytes. False, without effect, when the index or the table is too large, or the
    // budget does not cover it.
    bool add(quint32 index, std::string_view bytes, spotlight_budget *budget);
    // To be called between the last `add` and the first `find`.
    void finish();
    // The view is valid as long as the table is not changed.
    [[nodiscard]] std::optional<std::string_view> find(quint64 index) const;

    struct slot
    {
        quint32 index = 0;
        quint32 offset = 0; // in the pool
        quint32 length = 0;
    };
    [[nodiscard]] const std::vector<slot> &slots_by_index() const { return slots_; }
    [[nodiscard]] std::string_view bytes(const slot &place) const;

private:
    std::string pool_;
    std::vector<slot> slots_;
};

} // namespace formats
