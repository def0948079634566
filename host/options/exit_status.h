// How a sub-command ends, and the line that says why.
#pragma once

#include <QString>

namespace host {

// Scripts test these numbers: do not renumber.
enum class exit_status : int {
    done = 0,
    incomplete = 1, // the run ended, but lists, values or rows are missing
    wrong_usage = 2,
    source_unusable = 3,
    result_unusable = 4,
    plugin_unusable = 5,
    cancelled = 130, // what a shell reports for a program that Ctrl-C ended
};

// What went wrong and what the user can do about it, in one sentence without the program's name.
struct failure
{
    exit_status status;
    QString message;
};

} // namespace host
