// Drives one plug-in object through whole runs, as the host does.
#pragma once

#include "source_builder.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>

// What the host and the examiner get to see of one run.
struct run_outcome
{
    qint64 records = 0; // the last count that was told
    int tabs = 0;
    QStringList log; // messages without time, engine and function
    qint64 elapsed_ms = 0;

    // Lines that hold the text.
    [[nodiscard]] int told(const char *text) const
    {
        return log.filter(QLatin1String(text)).size();
    }
    // Whether the run came to its regular end.
    [[nodiscard]] bool ended() const { return told("[pub_extract_artifacts] - END") == 1; }
};

class host_driver
{
public:
    host_driver(const source_builder &source, const QStringList &users);

    // From the essentials to removing the temporary folder. With `clear` the rows of earlier runs
    // are removed first.
    run_outcome run(bool clear = false);

    // Called at every row instead of once a second when set before the run.
    std::function<void(qint64 records)> on_records;
    std::function<void(int tabs)> on_tabs;
    std::function<void()> before_extraction;
    [[nodiscard]] cyberduck &plugin() { return plugin_; }

private:
    void set_up(bool clear);
    QStringList take_log();

    const source_builder &source_;
    QStringList users_;
    QTemporaryDir log_folder_;
    cyberduck plugin_;
    run_outcome outcome_;
};
