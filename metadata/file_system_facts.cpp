#include "metadata/file_system_facts.h"

#include "formats/attributes/attribute_value.h"
#include "evidence/folders/folder_listing.h"

#include <utility>

namespace metadata {

namespace {

using fact = std::optional<formats::spotlight_value>;

// What macOS shows as ":" to programs is a "/" in the name that the user gave.
fact name_of(const source_file &file)
{
    QString name = file.path.mid(file.path.lastIndexOf(QLatin1Char('/')) + 1);
    if (name.isEmpty())
        return std::nullopt;
    return name.replace(QLatin1Char(':'), QLatin1Char('/'));
}

fact size_of(const source_file &file)
{
    return file.held->is_regular() ? fact(file.held->status().size) : std::nullopt;
}

fact date_of(const std::optional<qint64> &epoch_ms)
{
    return epoch_ms ? formats::date_value(static_cast<double>(*epoch_ms) / 1000.0) : std::nullopt;
}

fact creation_of(const source_file &file)
{
    return date_of(file.held->status().times.born_ms);
}

fact change_of(const source_file &file)
{
    return date_of(file.held->status().times.modified_ms);
}

fact node_count_of(const source_file &file)
{
    if (!file.held->is_folder())
        return std::nullopt;
    const std::optional<qint64> count = evidence::folder_entry_count(*file.held);
    return count ? fact(*count) : std::nullopt;
}

fact owner_of(const source_file &file)
{
    return qint64{file.held->status().owner};
}

fact group_of(const source_file &file)
{
    return qint64{file.held->status().group};
}

struct named_fact
{
    const char *name;
    fact (*read)(const source_file &file);
};

constexpr named_fact named_facts[] = {
    {"kMDItemFSName", name_of},
    {"kMDItemFSSize", size_of},
    {"kMDItemFSCreationDate", creation_of},
    {"kMDItemContentCreationDate", creation_of},
    {"kMDItemFSContentChangeDate", change_of},
    {"kMDItemContentModificationDate", change_of},
    {"kMDItemFSNodeCount", node_count_of},
    {"kMDItemFSOwnerUserID", owner_of},
    {"kMDItemFSOwnerGroupID", group_of},
};

} // namespace

class file_system_facts::file final : public file_metadata
{
public:
    file(single_notes &notes, source_file about)
        : notes_(notes)
        , about_(std::move(about))
    {
    }

    std::optional<formats::spotlight_value> attribute(const QString &name) override
    {
        for (const named_fact &known : named_facts) {
            if (name != QLatin1String(known.name))
                continue;
            fact value = known.read(about_);
            if (value)
                notes_.add(QStringLiteral("metadata taken from the file system itself"));
            return value;
        }
        return std::nullopt;
    }

private:
    single_notes &notes_;
    source_file about_;
};

std::unique_ptr<file_metadata> file_system_facts::open(const source_file &about)
{
    return std::make_unique<file>(notes_, about);
}

} // namespace metadata
