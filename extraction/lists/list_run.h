// One run of an extractor: walks the users' folders, stays inside the source, loads each list,
// logs, and ends when the run is cancelled.
#pragma once

#include "evidence/folders/folder_walk.h"
#include "evidence/folders/source_boundary.h"
#include "extraction/source/extraction_context.h"
#include "extraction/lists/extractor.h"
#include "extraction/source/path_mapper.h"
#include "platform/property_list.h"
#include "results/rows/row_sink.h"

#include <QString>
#include <QStringList>

namespace extraction {

class list_run
{
public:
    // Both outlive the run.
    list_run(extractor *reader, const extraction_context &context);

    // Reads the lists below `folders`, in their order, into the database. Logs start and end. There
    // is no end line when the database cannot be opened or the run is cancelled.
    void read_folders(const QStringList &folders);
    // The same for the one list at `path`.
    void read_file(const QString &path, const QString &user);

    // For the extractor, while it reads.
    [[nodiscard]] results::row_sink &rows() { return rows_; }
    [[nodiscard]] bool is_cancelled() const { return context_.cancelled.is_requested(); }
    [[nodiscard]] const path_mapper &paths() const { return paths_; }
    [[nodiscard]] const evidence::source_boundary &boundary() const { return boundary_; }
    // Writes one line under this extractor's signature.
    void log(const char *words, const QString &value = QString()) const;

private:
    enum class found { list, no_list, nothing };

    bool open();
    step read_folder(const QString &folder);
    step read_entry(const evidence::folder_walk &walk, const row_origin &folder_origin);
    // Writes the rows of the loaded list, and log lines for values that it could not give.
    step read_loaded(const QString &path, const row_origin &origin);
    // Loads the entry's list. `nothing` when the entry must not be opened.
    found load_entry(const evidence::folder_walk &walk);
    bool load_file(const QString &path);

    extractor *reader_;
    const extractor_profile &profile_;
    const extraction_context &context_;
    path_mapper paths_;
    evidence::source_boundary boundary_;
    results::row_sink rows_;
    platform::property_list list_;
};

} // namespace extraction
