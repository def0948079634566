#include "extraction/copies/attribute_selection.h"

#include "text/list_difference.h"

namespace extraction {

namespace {

// The transfers extractor always reads these.
constexpr const char *own_attributes[] = {
    "kMDItemDateAdded",
    "kMDItemKind",
    "kMDItemContentCreationDate",
    "kMDItemContentModificationDate",
    "kMDItemContentType",
    "kMDItemFSContentChangeDate",
    "kMDItemFSCreationDate",
    "kMDItemFSName",
    "kMDItemFSNodeCount",
    "kMDItemWhereFroms",
    "kMDItemLatitude",
    "kMDItemLongitude",
    "kMDItemAltitude",
    "org_bittorrent_torrent_filenames",
    "kMDItemUsedDates",
    "kMDItemLastUsedDate",
};

} // namespace

QStringList without_own_attributes(const QStringList &selected, const run::cancellation &cancelled)
{
    QStringList own;
    for (const char *name : own_attributes)
        own.append(QLatin1String(name));
    return text::texts_not_in(own, selected, cancelled);
}

} // namespace extraction
