#include "extraction/preferences_table.h"

#include "text/foundation_numbers.h"

namespace extraction {

namespace {

using formats::property_list_value;
using formats::value_kind;

constexpr preference_code icon_sizes[] = {
    {"16", "Use small icons"},
    {"32", "Use medium icons"},
    {"64", "Use large icons"},
};
constexpr preference_code connection_kinds[] = {
    {"newconnection", "Open new connection"},
    {"browser", "Use browser connection"},
    {"concurrent", "Open multiple connection"},
};
constexpr preference_code existing_file_actions[] = {
    {"ask", "Prompt"},     {"overwrite", "Overwrite"},    {"resume", "Resume"},
    {"similar", "Rename"}, {"rename", "Rename existing"}, {"compare", "Compare"},
    {"skip", "Skip"},
};
constexpr preference_code editors[] = {
    {"com.apple.textedit", "com.apple.textedit"},
    {"com.apple.dt.xcode", "com.apple.dt.xcode"},
};
// A limited bandwidth is not shown.
constexpr preference_code bandwidths[] = {
    {"-1", "Unlimited bandwidth"},
};
constexpr preference_code bucket_regions[] = {
    {"us-east-1", "US East (Northern Virginia)"},
    {"us-west-1", "US West (Northern California)"},
    {"us-west-2", "US West (Oregon)"},
    {"eu-west-1", "EU (Ireland)"},
    {"ap-southeast-1", "Asia Pacific (Singapore)"},
    {"ap-southeast-2", "Asia Pacific (Sydney)"},
    {"eu-central-1", "EU (Frankfurt)"},
    {"ap-northeast-1", "Asia Pacific (Tokyo)"},
    {"sa-east-1", "South America (Sao Paulo)"},
};
constexpr preference_code storage_classes[] = {
    {"STANDARD_IA", "STANDARD_IA"},
    {"STANDARD", "STANDARD"},
    {"REDUCED_REDUNDANCY", "REDUCED_REDUNDANCY"},
};

bool is_not_zero(const property_list_value &value)
{
    return text::truncated_to_int64(value.double_value()) != 0;
}

QString yes_no(bool yes)
{
    return yes ? QStringLiteral("YES") : QStringLiteral("NO");
}

QString as_stored(const property_list_value &value, const preference_codes &)
{
    return value.text();
}

QString yes_no_of_text(const property_list_value &value, const preference_codes &)
{
    return value.is(value_kind::text) ? yes_no(is_not_zero(value)) : QString();
}

QString yes_no_of_number(const property_list_value &value, const preference_codes &)
{
    return value.is_number() ? yes_no(is_not_zero(value)) : QString();
}

QString whole_number(const property_list_value &value, const preference_codes &)
{
    if (!value.is_number())
        return {};
    return QString::number(text::truncated_to_int64(value.double_value()));
}

QString mapped(const property_list_value &value, const preference_codes &codes)
{
    const QString stored = value.text();
    for (const preference_code &entry : codes) {
        if (stored == QLatin1String(entry.code))
            return QLatin1String(entry.shown);
    }
    return {};
}

// The labels are the host's, misspellings included.
constexpr preference all_preferences[] = {
    {"browser.serialize", "Save workspace", as_stored, {}},
    {"browser.open.untitled", "Open new browser window on startup", as_stored, {}},
    {"connection.login.useKeychain", "Use keychain", as_stored, {}},
    {"browser.disconnect.confirm", "Confirm disconnect", as_stored, {}},
    {"connection.protocol.default", "Default protocol", as_stored, {}},
    {"browser.showHidden", "Show hidden files", as_stored, {}},
    {"browser.doubleclick.edit", "Double click opens file in external editor", as_stored, {}},
    {"browser.enterkey.rename", "Return key selects folder or file to rename", as_stored, {}},
    {"browser.info.inspector", "Info window always shows current selection", as_stored, {}},
    {"browser.view.autoexpand",
     "Use spring-loaded folders when dragging files",
     yes_no_of_text,
     {}},
    {"browser.view.autoexpand.useDelay",
     "Use spring-loaded folders when dragging files with delay",
     yes_no_of_number,
     {}},
    {"browser.view.autoexpand.delay", "Browser view autoexpand delay", whole_number, {}},
    {"browser.alternatingRows", "Use alternating row background", as_stored, {}},
    {"browser.horizontalLines", "Horizontal Lines", as_stored, {}},
    {"browser.verticalLines", "Vertical Lines", as_stored, {}},
    {"bookmark.icon.size", "Bookmark icon size", mapped, icon_sizes},
    {"queue.transfer.type", "Transfer Files", mapped, connection_kinds},
    {"queue.window.open.transfer.start",
     "Bring window to front when transfer starts",
     as_stored,
     {}},
    {"queue.window.open.transfer.stop", "Close window when trabsfer completes", as_stored, {}},
    {"queue.removeItemWhenComplete", "Remove when transfer completes", as_stored, {}},
    {"queue.download.complete.open",
     "Open downloaded files with default application",
     as_stored,
     {}},
    {"queue.download.folder", "Download folder", as_stored, {}},
    {"queue.download.reload.action", "Existing Files", mapped, existing_file_actions},
    {"queue.upload.file.temporary", "Upload with temporary file name", as_stored, {}},
    {"queue.upload.action", "Existing Files", mapped, existing_file_actions},
    {"queue.upload.reload.action", "Always overwrite when reloading", as_stored, {}},
    {"editor.bundleIdentifier", "Editor", mapped, editors},
    {"editor.alwaysUseDefault", "Always use this application", as_stored, {}},
    {"queue.download.bandwidth.bytes", "Downloads maximum throughput", mapped, bandwidths},
    {"queue.upload.bandwidth.bytes", "Uploads maximum throughput", mapped, bandwidths},
    {"bookmark.import.com.fetchsoftworks.Fetch",
     "Bookmark Import com Fetchs of tworks Fetch",
     as_stored,
     {}},
    {"s3.location", "Default bucket location", mapped, bucket_regions},
    {"s3.storage.class", "Default storage class", mapped, storage_classes},
    {"s3.encryption.algorithm", "Algorithm to encrypt files with on upload", as_stored, {}},
    {"browser.charset.encoding", "Text encoding", as_stored, {}},
    {"connection.timeout.seconds", "Timeout for opening connections (seconds)", whole_number, {}},
    {"connection.retry.delay", "Repeat failed networking tasks with delay", whole_number, {}},
    {"connection.retry", "Repeat failed networking tasks number of retries", whole_number, {}},
    {"connection.proxy.enable", "Use system proxy settings", as_stored, {}},
};

static_assert(std::size(all_preferences) == 39);

} // namespace

preference_list known_preferences()
{
    return {std::begin(all_preferences), std::end(all_preferences)};
}

} // namespace extraction
