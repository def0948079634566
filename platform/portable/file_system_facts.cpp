#include "file_system_facts.h"

#include "attribute_value.h"
#include "posix_calls.h"

#include "platform/file_times.h"

#include <utility>

namespace platform {

namespace {

using fact = std::optional<spotlight_value>;

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
    return S_ISREG(file.status.st_mode) ? fact(qint64{file.status.st_size}) : std::nullopt;
}

fact date_of(const std::optional<qint64> &epoch_ms)
{
    return epoch_ms ? date_value(static_cast<double>(*epoch_ms) / 1000.0) : std::nullopt;
}

fact creation_of(const source_file &file)
{
    const std::optional<file_times> times = times_of(file.path);
    return times ? date_of(times->born_ms) : std::nullopt;
}

fact change_of(const source_file &file)
{
    const std::optional<file_times> times = times_of(file.path);
    return times ? date_of(times->modified_ms) : std::nullopt;
}

fact node_count_of(const source_file &file)
{
    if (!S_ISDIR(file.status.st_mode))
        return std::nullopt;
    const std::optional<qint64> count = folder_entry_count(file.encoded_path);
    return count ? fact(*count) : std::nullopt;
}

fact owner_of(const source_file &file)
{
    return qint64{file.status.st_uid};
}

fact group_of(const source_file &file)
{
    return qint64{file.status.st_gid};
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

    std::optional<spotlight_value> attribute(const QString &name) override
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

} // namespace platform
