// Times in the forms that artifacts hold them, turned into seconds since 1970 UTC. The names are
// those of the host's library. Results are texts; null or empty for what is no time.
#pragma once

#include "run/log_sink.h"

#include <QDateTime>
#include <QString>

namespace text {

[[nodiscard]] QString convert_apple_time_to_epoch(QString value);
[[nodiscard]] QString convert_google_time_to_epoch(QString value);
// "0530" gives 19800 s.
[[nodiscard]] int convert_timezone_to_seconds(QString offset);
[[nodiscard]] QString convert_timestamp_to_human_readable_in_UTC(QString value);
[[nodiscard]] QString get_human_readable_time(QString seconds);
// "May 9, 2020, 4:15:12 PM UTC". Any other zone name, or none, means this machine's local time.
[[nodiscard]] QString convert_human_readable_to_epoch_1(QString value);
// "2020-05-09 10:45:12.250 +0530"; without an offset the wall clock is UTC.
[[nodiscard]] QString convert_human_readable_to_epoch_2(QString value);
// "Sat, 09 May 2020 10:45:12 GMT"; the zone is dropped, the wall clock taken as UTC.
[[nodiscard]] QString convert_human_readable_to_epoch_3(QString value);
// "2020-05-09T10:45:12.250Z", with or without punctuation, or the date alone. A zone offset in
// place of the Z is counted, since the wall clock alone would be another instant.
[[nodiscard]] QString convert_T_Z_time_to_epoch(QString value);
// Logs that it starts, and that it ends where a second form of the text had to be tried.
[[nodiscard]] QDateTime get_datetime_from_string_with_iso_date(QString value,
                                                               const run::log_sink &log);

} // namespace text
