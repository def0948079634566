// Runs the extractors of the selected tabs, in an order that the host counts on.
#include "cyberduck_macos.h"

#include "support/plugin_static_function.h"

namespace {

constexpr char driver_signature[] = "void cyberduck_macos::extract_plugin_artifacts()";
constexpr unsigned last_valid_engine = 2;

} // namespace

void cyberduck_macos::extract_plugin_artifacts()
{
    plugin_static_function::app_debug(QStringLiteral("[extract_plugin_artifacts] starts"),
                                      QLatin1String(driver_signature));
    if (static_cast<unsigned>(engine_type) <= last_valid_engine) {
        extract_tab("bookmarks", &cyberduck_macos::xcode_extract_bookmarks);
        extract_tab("history", &cyberduck_macos::xcode_extract_history);
        extract_tab("transfers", &cyberduck_macos::xcode_extract_transfers);
        if (!extract_all_preferences())
            return;
    }
    plugin_static_function::app_debug(QStringLiteral("[extract_plugin_artifacts] ends"),
                                      QLatin1String(driver_signature));
}

void cyberduck_macos::extract_tab(const char *tab, void (cyberduck_macos::*extractor)())
{
    if (!essential_tab_list.contains(QLatin1String(tab)))
        return;
    (this->*extractor)();
    Q_EMIT signal_extracted_records_of_plugin_macos(record_count);
    count_tab();
}

void cyberduck_macos::count_tab()
{
    tab_processed_count += 1;
    Q_EMIT signal_total_tabs_processed_macos(tab_processed_count);
}

// False when cancelled between two files: then the driver ends without another word.
bool cyberduck_macos::extract_all_preferences()
{
    if (!essential_tab_list.contains(QStringLiteral("preferences")))
        return true;
    for (const QString &file : qAsConst(preferences_file_list)) {
        if (is_cancelled())
            return false;
        const QString user = plugin_static_function::extract_user_name_from_sourcefile(
                                 file, fs_extraction_source_path)
                                 .first;
        xcode_extract_preferences(file, user);
        Q_EMIT signal_extracted_records_of_plugin_macos(record_count);
    }
    count_tab();
    return true;
}
