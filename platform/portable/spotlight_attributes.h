// What one record of a store says, by the names that programs ask for.
#pragma once

#include "platform/spotlight_value.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <optional>

namespace platform {

class spotlight_attributes
{
public:
    // `stored_name` as in the store. A name given twice keeps the later value.
    void set(const QByteArray &stored_name, spotlight_value value);
    // The value of a public name such as "kMDItemFSName", which may be stored under another name.
    // Case-sensitive. Nullopt when the record has none.
    [[nodiscard]] std::optional<spotlight_value> value(const QString &public_name) const;
    [[nodiscard]] int size() const { return values_.size(); }

private:
    [[nodiscard]] std::optional<spotlight_value> stored(const QByteArray &name) const;

    QHash<QByteArray, spotlight_value> values_;
};

} // namespace platform
