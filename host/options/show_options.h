// The command line of "show".
#pragma once

#include "host/display/shown_values.h"
#include "host/options/exit_status.h"

#include <QPair>
#include <QString>
#include <QStringList>

#include <optional>

namespace host {

// `automatic`: aligned, or a value a line where lines would wrap on the terminal.
enum class show_form { automatic, aligned, one_value_a_line, csv, json };

struct show_options
{
    QString directory;
    QStringList tables;
    QStringList columns;                  // empty: the telling ones, or all of them
    QList<QPair<QString, QString>> where; // column and text that it must have
    qint64 limit = -1;                    // rows of each table; negative: all
    show_form form = show_form::automatic;
    value_style style;
};

// Fills `options`. Returns nothing when the tables shall be shown, else how the command ended.
std::optional<exit_status> read_show_options(const QStringList &arguments, show_options &options);

} // namespace host
