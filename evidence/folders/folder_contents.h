// What one folder held when it was listed. Saves a look at each of many names.
#pragma once

#include "run/cancellation.h"

#include <QByteArray>
#include <QtGlobal>

#include <memory>
#include <vector>

namespace evidence {

class folder_contents
{
public:
    // Null when the folder at `encoded_path`, free of links, cannot be listed to its end, or holds
    // more than a million entries or 64 MiB of names, or the run is cancelled meanwhile.
    [[nodiscard]] static std::shared_ptr<const folder_contents>
    list(const QByteArray &encoded_path, const run::cancellation &cancelled = {});

    [[nodiscard]] bool has(const QByteArray &name) const { return find(name) != nullptr; }
    // Whether the listing itself says that it is a regular file.
    [[nodiscard]] bool is_file(const QByteArray &name) const;

private:
    void add(const char *name, char kind);
    void sort();
    // The kind in front of the name in the pool; null when there is no such name.
    [[nodiscard]] const char *find(const QByteArray &name) const;

    QByteArray pool_;              // a kind and a name, NUL after each
    std::vector<quint32> entries_; // offsets in the pool, by name
};

} // namespace evidence
