#include "formats/spotlight_store/spotlight_attributes.h"

#include "formats/attributes/declared_class.h"

namespace formats {

namespace {

struct name_pair
{
    const char *asked;
    const char *stored;
};

// The public names of file-system facts never stand in a store.
constexpr name_pair file_system_names[] = {
    {"kMDItemFSName", "_kMDItemFileName"},
    {"kMDItemFSCreationDate", "_kMDItemCreationDate"},
    {"kMDItemFSContentChangeDate", "_kMDItemContentChangeDate"},
    {"kMDItemFSSize", "kMDItemLogicalSize"},
    {"kMDItemFSNodeCount", "_kMDItemNodeCount"},
    {"kMDItemFSOwnerUserID", "_kMDItemOwnerUserID"},
    {"kMDItemFSOwnerGroupID", "_kMDItemOwnerGroupID"},
    {"kMDItemFSFinderFlags", "_kMDItemFinderFlags"},
    {"kMDItemFSLabel", "_kMDItemFinderLabel"},
    {"kMDItemFSTypeCode", "_kMDItemTypeCode"},
    {"kMDItemFSCreatorCode", "_kMDItemCreatorCode"},
    {"kMDItemFSIsExtensionHidden", "_kMDItemIsExtensionHidden"},
};

constexpr char invisible_name[] = "kMDItemFSInvisible"; // one bit of the Finder flags
constexpr char finder_flags_name[] = "_kMDItemFinderFlags";
constexpr qint64 invisible_flag = 0x4000;

} // namespace

void spotlight_attributes::set(const QByteArray &stored_name, const spotlight_value &value)
{
    values_.insert(stored_name, value);
}

std::optional<spotlight_value> spotlight_attributes::value(const QString &public_name) const
{
    const QByteArray name = public_name.toUtf8();
    for (const name_pair &pair : file_system_names) {
        if (name == pair.asked)
            return stored(pair.stored, public_name);
    }
    if (name == invisible_name) {
        const auto flags = stored(finder_flags_name, QStringLiteral("kMDItemFSFinderFlags"));
        const qint64 *number = flags ? std::get_if<qint64>(&*flags) : nullptr;
        if (number == nullptr)
            return std::nullopt;
        return std::optional<spotlight_value>(std::in_place, (*number & invisible_flag) != 0);
    }
    const auto same = stored(name, public_name);
    return same ? same : stored('_' + name, public_name);
}

std::optional<spotlight_value> spotlight_attributes::stored(const QByteArray &stored_name,
                                                            const QString &public_name) const
{
    // The value set last comes first.
    for (auto value = values_.constFind(stored_name);
         value != values_.constEnd() && value.key() == stored_name; ++value) {
        if (auto fitting = of_declared_class(public_name, *value))
            return fitting;
    }
    return std::nullopt;
}

} // namespace formats
