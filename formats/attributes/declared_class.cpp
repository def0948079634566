#include "formats/attributes/declared_class.h"

#include <algorithm>
#include <utility>

namespace formats {

namespace {

enum class element_class { text, number, flag, date };
enum class form { single, list };

struct declaration
{
    const char *name;
    element_class element;
    form shape;
};

constexpr declaration declarations[] = {
    {"kMDItemDateAdded", element_class::date, form::single},
    {"kMDItemLastUsedDate", element_class::date, form::single},
    {"kMDItemUsedDates", element_class::date, form::list},
    {"kMDItemDownloadedDate", element_class::date, form::list},
    {"kMDItemContentCreationDate", element_class::date, form::single},
    {"kMDItemContentModificationDate", element_class::date, form::single},
    {"kMDItemFSCreationDate", element_class::date, form::single},
    {"kMDItemFSContentChangeDate", element_class::date, form::single},
    {"kMDItemWhereFroms", element_class::text, form::list},
    {"org_bittorrent_torrent_filenames", element_class::text, form::list},
    {"kMDItemContentTypeTree", element_class::text, form::list},
    {"kMDItemContentType", element_class::text, form::single},
    {"kMDItemKind", element_class::text, form::single},
    {"kMDItemDisplayName", element_class::text, form::single},
    {"kMDItemFSName", element_class::text, form::single},
    {"kMDItemFSSize", element_class::number, form::single},
    {"kMDItemFSNodeCount", element_class::number, form::single},
    {"kMDItemFSOwnerUserID", element_class::number, form::single},
    {"kMDItemFSOwnerGroupID", element_class::number, form::single},
    {"kMDItemFSFinderFlags", element_class::number, form::single},
    {"kMDItemFSLabel", element_class::number, form::single},
    {"kMDItemFSTypeCode", element_class::number, form::single},
    {"kMDItemFSCreatorCode", element_class::number, form::single},
    {"kMDItemFSInvisible", element_class::flag, form::single},
    {"kMDItemFSIsExtensionHidden", element_class::flag, form::single},
    {"kMDItemLatitude", element_class::number, form::single},
    {"kMDItemLongitude", element_class::number, form::single},
    {"kMDItemAltitude", element_class::number, form::single},
};

bool is_of(element_class wanted, const spotlight_scalar &scalar)
{
    const bool is_integer = std::holds_alternative<qint64>(scalar);
    switch (wanted) {
    case element_class::text:
        return std::holds_alternative<QString>(scalar);
    case element_class::number:
        return is_integer || std::holds_alternative<spotlight_floating>(scalar);
    case element_class::flag: // 0 and 1 in some versions
        return is_integer || std::holds_alternative<bool>(scalar);
    case element_class::date:
        return std::holds_alternative<spotlight_date>(scalar);
    }
    return false;
}

struct as_list
{
    spotlight_list operator()(spotlight_list list) const { return list; }
    template <typename Scalar> spotlight_list operator()(Scalar scalar) const
    {
        return {std::move(scalar)};
    }
};

std::optional<spotlight_value> list_of(element_class wanted, spotlight_list list)
{
    const auto is_other = [wanted](const spotlight_scalar &element) {
        return !is_of(wanted, element);
    };
    if (std::all_of(list.cbegin(), list.cend(), is_other))
        return std::nullopt;
    // What is no date would be shown as one.
    if (wanted == element_class::date)
        list.erase(std::remove_if(list.begin(), list.end(), is_other), list.end());
    return list;
}

std::optional<spotlight_value> single_of(element_class wanted, const spotlight_list &list)
{
    if (list.size() != 1 || !is_of(wanted, list.front()))
        return std::nullopt;
    return std::visit([](const auto &element) { return spotlight_value(element); }, list.front());
}

} // namespace

std::optional<spotlight_value> of_declared_class(const QString &name, spotlight_value value)
{
    for (const declaration &known : declarations) {
        if (name != QLatin1String(known.name))
            continue;
        spotlight_list elements = std::visit(as_list(), std::move(value));
        return known.shape == form::list ? list_of(known.element, std::move(elements))
                                         : single_of(known.element, elements);
    }
    return value;
}

} // namespace formats
