// What one record of a store says, by the names that programs ask for.
#pragma once

#include "formats/attributes/spotlight_value.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <optional>

namespace formats {

class spotlight_attributes
{
public:
    // `stored_name` as in the store. Of a name given twice the later value counts whose class fits.
    void set(const QByteArray &stored_name, const spotlight_value &value);
    // The value of a public name such as "kMDItemFSName", which may be stored under another name.
    // Case-sensitive. Nullopt when the record has none of the class that the name asks for.
    [[nodiscard]] std::optional<spotlight_value> value(const QString &public_name) const;
    [[nodiscard]] int size() const { return values_.size(); }

private:
    // The value of `stored_name` as `public_name` asks for it.
    [[nodiscard]] std::optional<spotlight_value> stored(const QByteArray &stored_name,
                                                        const QString &public_name) const;

    QMultiHash<QByteArray, spotlight_value> values_;
};

} // namespace formats
