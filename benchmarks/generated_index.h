// The metadata index of a volume of any size.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

namespace generated_index {

constexpr quint64 first_id = 100;
// A record whose id is a multiple of this is a folder, in which the next ones lie.
constexpr quint64 records_per_folder = 50;

[[nodiscard]] QString folder_name(quint64 id);
[[nodiscard]] QString file_name(quint64 id);

// The index's files by name. Each record has a used date, a size and a text.
[[nodiscard]] QHash<QString, QByteArray> of_volume(quint64 records);

} // namespace generated_index
