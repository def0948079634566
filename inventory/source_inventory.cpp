#include "inventory/source_inventory.h"

#include "evidence/access/source_open.h"
#include "evidence/files/evidence_file.h"
#include "evidence/files/file_names.h"
#include "evidence/folders/folder_listing.h"
#include "formats/property_list/property_list_parser.h"
#include "inventory/reading/list_remarks.h"

#include <QDateTime>

#include <chrono>
#include <utility>

#include <fcntl.h>

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
        if (evidence::read_link(folder.descriptor(), entry->d_name) == "/")
            return evidence::decoded_name(entry->d_name);
    }
    return {};
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

source_inventory::source_inventory(std::vector<inventory_request> requests, int jobs,
                                   const run::cancellation &cancelled, inventory_database *database)
    : requests_(std::move(requests))
    , jobs_(jobs)
    , cancelled_(cancelled)
    , database_(database)
{
    for (size_t i = 0; i < requests_.size(); ++i)
        progress_.push_back(std::make_unique<reading_progress>());
    thread_ = std::thread([this] { take_all(); });
}

source_inventory::~source_inventory()
{
    static_cast<void>(finish());
}

void source_inventory::take_all()
{
    for (size_t i = 0; i < requests_.size() && is_whole_; ++i)
        is_whole_ = take(requests_[i], progress_[i].get());
    has_ended_ = true;
}

bool source_inventory::take(const inventory_request &request, reading_progress *progress)
{
    const int source = request.source.number;
    bool is_written = database_->add_source(request.source);
    for (const searched_place &place : request.found->places)
        is_written = is_written && database_->add_place(source, place);
    for (const found_note &note : request.found->notes)
        is_written = is_written && database_->add_note(source, note);
    list_remarks remarks(request.source.root, request.is_volume,
                         QDateTime::currentMSecsSinceEpoch(), cancelled_);
    const auto write = [&](const list_account &account) {
        is_written = is_written && database_->add_list(source, account);
        for (const found_note &note : remarks.of(account))
            is_written = is_written && database_->add_note(source, note);
    };
    const bool is_read = read_lists(request.found->lists, jobs_, cancelled_, progress, write);
    return is_written && is_read;
}

bool source_inventory::wait_until_read(size_t source)
{
    constexpr std::chrono::milliseconds moment{1};
    const auto is_read = [&] {
        return has_ended_ ||
               progress_[source]->read >= qint64(requests_[source].found->lists.size());
    };
    if (is_read())
        return true;
    std::this_thread::sleep_for(moment);
    return is_read();
}

bool source_inventory::finish()
{
    if (thread_.joinable())
        thread_.join();
    return is_whole_ && !cancelled_.is_requested();
}

} // namespace inventory
