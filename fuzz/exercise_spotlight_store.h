// Asks a store for everything that it can be asked for.
#pragma once

#include "platform/portable/spotlight_store.h"

#include <QHash>

#include <algorithm>
#include <cstdlib>
#include <memory>

inline void exercise_spotlight_store(const QHash<QString, QByteArray> &files)
{
    constexpr size_t most_records = 200; // of a bomb's millions
    constexpr size_t most_depth = 20;
    platform::spotlight_store store(std::make_unique<platform::memory_byte_folder>(files),
                                    QStringLiteral("store"));
    store.load(nullptr);
    const platform::spotlight_index &index = store.index();
    for (size_t record = 0; record < std::min(index.size(), most_records); ++record) {
        if (const auto values = store.attributes(record))
            (void)values->value(QStringLiteral("kMDItemFSInvisible"));
        QStringList path;
        auto step = std::optional<size_t>(record);
        while (step && index.id(*step) != platform::spotlight_index::root_id &&
               size_t(path.size()) < most_depth) {
            const std::string_view name = index.name(*step);
            path.prepend(QString::fromUtf8(name.data(), int(name.size())));
            step = index.find_id(index.parent_id(*step));
        }
        const auto found = index.find_path(path);
        // Whatever is found must bear the name that was asked for.
        if (!path.isEmpty() && !found.empty() && index.name(found.front()).empty())
            std::abort();
    }
}
