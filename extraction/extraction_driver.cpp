#include "extraction/extraction_driver.h"

#include "extraction/bookmarks.h"
#include "extraction/history.h"
#include "extraction/lists/list_run.h"
#include "extraction/preferences.h"
#include "extraction/transfers.h"
#include "results/database/result_tables.h"

namespace extraction {

namespace {

constexpr char driver_signature[] = "void cyberduck_macos::extract_plugin_artifacts()";

struct folder_tab
{
    const char *name;
    QStringList client_data::*folders;
    void (*extract)(const QStringList &folders, const extraction_context &context);
};

constexpr folder_tab folder_tabs[] = {
    {results::bookmarks_table, &client_data::bookmark_folders, extract_bookmarks},
    {results::history_table, &client_data::history_folders, extract_history},
    {results::transfers_table, &client_data::transfer_folders, extract_transfers},
};

// False when cancelled between two files: then the driver ends without a log line.
bool extract_all_preferences(const QStringList &files, const extraction_context &context,
                             progress_listener *listener)
{
    for (const QString &file : files) {
        if (context.cancelled.is_requested())
            return false;
        const examined_source &source = context.source;
        extract_preferences(file, user_of_source_file(file, source.root, source.accounts).name,
                            context);
        listener->extractor_ended();
    }
    listener->tab_ended();
    return true;
}

// False when cancelled between two files of preferences.
bool extract_selected(const QStringList &tabs, const client_data &data,
                      const extraction_context &context, progress_listener *listener)
{
    for (const folder_tab &tab : folder_tabs) {
        if (!tabs.contains(QLatin1String(tab.name)))
            continue;
        tab.extract(data.*tab.folders, context);
        listener->extractor_ended();
        listener->tab_ended();
    }
    return !tabs.contains(QLatin1String(results::preferences_table)) ||
           extract_all_preferences(data.preference_files, context, listener);
}

} // namespace

void extract_bookmarks(const QStringList &folders, const extraction_context &context)
{
    bookmarks reader;
    list_run(&reader, context).read_folders(folders);
}

void extract_history(const QStringList &folders, const extraction_context &context)
{
    history reader;
    list_run(&reader, context).read_folders(folders);
}

void extract_transfers(const QStringList &folders, const extraction_context &context)
{
    transfers reader(context);
    list_run(&reader, context).read_folders(folders);
    reader.log_notes();
}

void extract_preferences(const QString &file, const QString &user,
                         const extraction_context &context)
{
    preferences reader;
    list_run(&reader, context).read_file(file, user);
}

void extract_tabs(const selected_tabs &tabs, const client_data &data,
                  const extraction_context &context, progress_listener *listener)
{
    context.log.write("[extract_plugin_artifacts] starts", QString(), driver_signature);
    if (results::is_extracting_engine(tabs.engine_type) &&
        !extract_selected(tabs.names, data, context, listener))
        return;
    context.log.write("[extract_plugin_artifacts] ends", QString(), driver_signature);
}

} // namespace extraction
