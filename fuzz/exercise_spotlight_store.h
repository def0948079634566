// Calls every query of a store.
#pragma once

#include "formats/spotlight_store/spotlight_store.h"

#include <QHash>

#include <algorithm>
#include <cstdlib>
#include <memory>

inline void exercise_spotlight_store(const QHash<QString, QByteArray> &files)
{
    constexpr size_t max_records = 200; // a forged store may have millions
    constexpr size_t most_depth = 20;
    formats::spotlight_budget budget;
    formats::spotlight_store store(std::make_unique<evidence::memory_byte_folder>(files),
                                   QStringLiteral("store"), &budget);
    store.load();
    const formats::spotlight_index &index = store.index();
    for (size_t record = 0; record < std::min(index.size(), max_records); ++record) {
        if (const auto values = store.attributes(record))
            (void)values->value(QStringLiteral("kMDItemFSInvisible"));
        QStringList path;
        auto step = std::optional<size_t>(record);
        while (step && index.id(*step) != formats::spotlight_index::root_id &&
               size_t(path.size()) < most_depth) {
            const std::string_view name = index.name(*step);
            path.prepend(QString::fromUtf8(name.data(), int(name.size())));
            step = index.find_id(index.parent_id(*step));
        }
        const auto found = index.find_path(path);
        // A found record must have the name that was looked up.
        if (!path.isEmpty() && !found.empty() && index.name(found.front()).empty())
            std::abort();
    }
}
