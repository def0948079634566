#include "metadata/file_system_facts.h"

#include "formats/attributes/attribute_value.h"
#include "evidence/folders/folder_listing.h"

#include <utility>

namespace metadata {

namespace {

using fact = std::optional<formats::spotlight_value>;

// What macOS shows as ":" to programs is a "/" in the name that the user gave.
fact name_of(const source_file &file, const run::cancellation &)
{
    QString name = file.path.mid(file.path.lastIndexOf(QLatin1Char('/')) + 1);
    if (name.isEmpty())
        return std::nullopt;
    return name.replace(QLatin1Char(':'), QLatin1Char('/'));
}

fact size_of(const source_file &file, const run::cancellation &)
{
    return file.held->is_regular() ? fact(file.held->status().size) : std::nullopt;
}

fact date_of(const std::optional<qint64> &epoch_ms)
{
    return epoch_ms ? formats::date_value(static_cast<double>(*epoch_ms) / 1000.0) : std::nullopt;
}

fact creation_of(const source_file &file, const run::cancellation &)
{
    return date_of(file.held->status().times.born_ms);
}

fact change_of(const source_file &file, const run::cancellation &)
{
    return date_of(file.held->status().times.modified_ms);
}

fact node_count_of(const source_file &file, const run::cancellation &cancelled)
{
    if (!file.held->is_folder())
        return std::nullopt;
    const std::optional<qint64> count = evidence::folder_entry_count(*file.held, cancelled);
    return count ? fact(*count) : std::nullopt;
}

fact owner_of(const source_file &file, const run::cancellation &)
{
    return qint64{file.held->status().owner};
}

fact group_of(const source_file &file, const run::cancellation &)
{
    return qint64{file.held->status().group};
}

struct named_fact
{
    const char *name;
    fact (*read)(const source_file &file, const run::cancellation &cancelled);
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
    file(file_system_facts &facts, source_file about)
        : facts_(facts)
        , about_(std::move(about))
    {
    }

    std::optional<formats::spotlight_value> attribute(const QString &name) override
    {
        for (const named_fact &known : named_facts) {
            if (name != QLatin1String(known.name))
                continue;
            fact value = known.read(about_, facts_.cancelled_);
            if (value)
                facts_.notes_.add(QStringLiteral("metadata taken from the file system itself"));
            return value;
        }
        return std::nullopt;
    }

private:
    file_system_facts &facts_;
    source_file about_;
};

std::unique_ptr<file_metadata> file_system_facts::open(const source_file &about)
{
    return std::make_unique<file>(*this, about);
}

} // namespace metadata
