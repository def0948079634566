// An extractor turns one list into rows. Its log texts and its statement are data. The steps that
// all extractors share are in list_run.h.
#pragma once

#include "extraction/lists/row_origin.h"
#include "formats/property_list/base/property_list_value.h"
#include "results/rows/row_sink.h"

#include <QString>

namespace extraction {

class list_run;

// The texts of an extractor's log lines. People search logs for them: do not reword. "%1" is
// replaced by a path.
struct extractor_words
{
    const char *starts = "";
    const char *database_failed = "";
    const char *database_error = nullptr; // %1: the error; null: no line
    const char *database_path = nullptr;  // %1: the database's path; null: no line
    const char *failed_end = nullptr;     // null: no line
    const char *path_failed = "";
    const char *list_failed = "";
    const char *outside_source = "";
    const char *text_cut = "";
    const char *values_left_out = "";
    const char *folder_failed = "";
    const char *ends = "";
    results::sink_words rows;
};

struct extractor_profile
{
    extractor_words words;
    const char *suffix;    // of the lists' file names, case-sensitive
    const char *statement; // inserts one row
};

// How a step of a run ended.
enum class step { done, cancelled };

// One list that was found and loaded; valid during the call that gets it.
struct loaded_list
{
    QString path; // as reachable here
    QString user;
    formats::property_list_value root; // a dictionary
    row_origin origin;                 // of its rows
};

class extractor
{
public:
    virtual ~extractor() = default;

    [[nodiscard]] virtual const extractor_profile &profile() const = 0;
    // Inserts the rows of one list.
    [[nodiscard]] virtual step read(const loaded_list &list, list_run *run) = 0;
};

} // namespace extraction
