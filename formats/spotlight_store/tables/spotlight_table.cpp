#include "formats/spotlight_store/tables/spotlight_table.h"

#include <algorithm>

namespace formats {

namespace {

// Side files can name the same long entry under every index.
constexpr size_t max_pool_bytes = size_t(128) * 1024 * 1024;

} // namespace

bool spotlight_table::add(quint32 index, std::string_view bytes, spotlight_budget *budget)
{
    const auto size = static_cast<qint64>(bytes.size());
    if (index > max_spotlight_index || bytes.size() > max_pool_bytes - pool_.size() ||
        !budget->charge(size + spotlight_object_units) ||
        !budget->charge_memory(size + qint64{sizeof(slot)}))
        return false;
    slots_.push_back(
        {index, static_cast<quint32>(pool_.size()), static_cast<quint32>(bytes.size())});
    pool_.append(bytes);
    return true;
}

void spotlight_table::finish()
{
    std::stable_sort(slots_.begin(), slots_.end(),
                     [](const slot &a, const slot &b) { return a.index < b.index; });
    // Of equal indexes the last one added is kept, and it stands last.
    const auto same_index = [](const slot &a, const slot &b) { return a.index == b.index; };
    const auto kept = std::unique(slots_.rbegin(), slots_.rend(), same_index);
    slots_.erase(slots_.begin(), kept.base());
    slots_.shrink_to_fit();
    pool_.shrink_to_fit();
}

std::optional<std::string_view> spotlight_table::find(quint64 index) const
{
    const auto place =
        std::lower_bound(slots_.begin(), slots_.end(), index,
                         [](const slot &a, quint64 wanted) { return a.index < wanted; });
    if (place == slots_.end() || place->index != index)
        return std::nullopt;
    return bytes(*place);
}

std::string_view spotlight_table::bytes(const slot &place) const
{
    return std::string_view(pool_).substr(place.offset, place.length);
}

} // namespace formats
