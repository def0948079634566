#include "inventory/source_inventory.h"

#include "evidence/files/evidence_file.h"
#include "evidence/files/file_names.h"
#include "evidence/folders/folder_listing.h"
#include "formats/property_list/property_list_parser.h"
#include "inventory/reading/reader_pool.h"

#include <fcntl.h>
#include <unistd.h>

namespace inventory {

namespace {

QString system_version(const evidence::source_boundary &boundary, const QString &root)
{
    const evidence::resolved_path place =
        boundary.hold(root + QStringLiteral("System/Library/CoreServices/SystemVersion.plist"));
    evidence::evidence_file file;
    if (place.where != evidence::reach::inside || !file.open(place.file))
        return {};
    formats::property_list_parser parser;
    parser.parse_file(&file);
    const QString version = parser.root().value(QStringLiteral("ProductVersion")).text();
    const QString build = parser.root().value(QStringLiteral("ProductBuildVersion")).text();
    return build.isEmpty() ? version : QStringLiteral("%1 (%2)").arg(version, build);
}

// The system keeps a link to "/" in /Volumes, named like the start volume.
QString volume_name(const evidence::source_boundary &boundary, const QString &root)
{
    const evidence::resolved_path volumes = boundary.resolve(root + QStringLiteral("Volumes"));
    evidence::folder_listing folder;
    if (volumes.where != evidence::reach::inside ||
        !folder.open(AT_FDCWD, evidence::encoded_name(volumes.path).constData()))
        return {};
    constexpr int most_volumes = 1000;
    for (int i = 0; i < most_volumes; ++i) {
        const dirent *const entry = folder.next();
        if (entry == nullptr)
            break;
        char target[2];
        if (::readlinkat(folder.descriptor(), entry->d_name, target, sizeof target) == 1 &&
            target[0] == '/')
            return evidence::decoded_name(entry->d_name);
    }
    return {};
}

void count(const list_account &account, inventory_result *result)
{
    list_counts &counts = result->counts[{account.list.user, account.list.kind}];
    ++counts.found;
    if (account.list.status == list_status::read)
        result->promised_rows += account.entries.value_or(0);
    switch (account.list.status) {
    case list_status::read:
        ++counts.read;
        break;
    case list_status::skipped:
        ++counts.skipped;
        break;
    case list_status::failed:
        ++counts.failed;
        break;
    }
}

} // namespace

source_facts facts_of_source(const QString &root)
{
    const evidence::source_boundary boundary(root);
    source_facts facts;
    facts.root = root;
    facts.os_version = system_version(boundary, root);
    facts.volume_name = volume_name(boundary, root);
    return facts;
}

inventory_result take_inventory(const inventory_request &request, inventory_database *database)
{
    inventory_result result;
    const int source = request.source.number;
    bool is_written = database->add_source(request.source);
    const found_on_source &found = *request.found;
    for (const searched_place &place : found.places)
        is_written = is_written && database->add_place(source, place);
    for (const found_note &note : found.notes)
        is_written = is_written && database->add_note(source, note);
    qint64 done = 0;
    const auto take = [&](const list_account &account) {
        is_written = is_written && database->add_list(source, account);
        count(account, &result);
        if (request.progress)
            request.progress(++done, qint64(found.lists.size()));
    };
    const bool is_read = read_lists(found.lists, request.jobs, request.cancelled, take);
    result.is_whole = is_written && is_read && !request.cancelled.is_requested();
    return result;
}

} // namespace inventory
