// Lines of the debug log: their form, and where they are written.
#pragma once

#include <QFile>
#include <QString>

namespace logging {

// The host's choices.
struct log_settings
{
    bool is_on = false;
    bool to_terminal = false; // to Qt's debug stream
    bool to_file = false;
    bool is_enciphered = false; // what goes to the file
    int engine_type = -1;       // names the engine in each line
};

// Appends to `path`. A failure leaves *file closed.
void open_log_file(const QString &path, QFile *file);
void close_log_file(QFile *file);
// One line, flushed at once. `function_info` is the writer's full signature, reduced to its
// qualified name. Control characters in the message are written out, long ones cut.
void write_line(const log_settings &settings, const QString &message, const QString &function_info,
                QFile *file);
// A token of the built-in cipher; empty for an empty text.
[[nodiscard]] QString enciphered(const QString &text);

} // namespace logging
