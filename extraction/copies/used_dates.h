// When a file was used, read from its metadata.
#pragma once

#include "evidence/folders/source_boundary.h"
#include "platform/spotlight_item.h"
#include "run/cancellation.h"
#include "run/log_sink.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace extraction {

// Texts of seconds since 1970 UTC, null where unknown.
struct usage_dates
{
    QString last_used_date;
    QStringList used_dates; // in the order of the attribute
    QString first_date;     // the earliest of used_dates
    QString last_date;      // the latest of used_dates
};

// The dates of the attributes "kMDItemLastUsedDate" and "kMDItemUsedDates". Null or empty when the
// item lacks the attribute, or when the system does not hand its text out directly. A text that is
// no date becomes 0, as everywhere in this library. A cancelled run gets the dates read so far.
[[nodiscard]] usage_dates used_dates_from(const platform::spotlight_item &item,
                                          const run::cancellation &cancelled,
                                          const run::log_sink &log);

// The same for files of one source, by their paths as the host names them.
class used_dates_reader
{
public:
    // `root`: where the source's file system is reachable.
    used_dates_reader(const QString &root, const run::cancellation &cancelled);

    // Empty dates for a file that is not inside the source.
    [[nodiscard]] usage_dates of_file(const QString &path, const run::log_sink &log);

private:
    evidence::source_boundary boundary_;
    run::cancellation cancelled_;
    std::unique_ptr<platform::spotlight_catalog> catalog_;
};

} // namespace extraction
