#include "platform/spotlight_item.h"

#include "platform/apple/contained.h"
#include "platform/apple/foundation_reader.h"

#include <CoreServices/CoreServices.h>

namespace platform {

namespace {

attribute_description description_of(CFTypeRef value)
{
    attribute_description description;
    const cf_ref<CFStringRef> printed(CFCopyDescription(value));
    if (!printed)
        return description;
    description.text = text_of(printed.get());
    description.c_string =
        QString::fromUtf8(CFStringGetCStringPtr(printed.get(), kCFStringEncodingMacRoman));
    return description;
}

class system_item final : public spotlight_item
{
public:
    explicit system_item(cf_ref<MDItemRef> item)
        : item_(std::move(item))
    {
    }
    std::optional<attribute_description> attribute(const QString &name) const override;

private:
    cf_ref<MDItemRef> item_;
};

std::optional<attribute_description> system_item::attribute(const QString &name) const
{
    using answer = std::optional<attribute_description>;
    return contained_in_pool(answer(), [this, &name]() -> answer {
        const cf_ref<CFStringRef> asked = cfstring_of(name);
        if (!asked)
            return std::nullopt;
        const cf_ref<CFTypeRef> value(MDItemCopyAttribute(item_.get(), asked.get()));
        if (!value)
            return std::nullopt;
        return description_of(value.get());
    });
}

// The system keeps the metadata: nothing is held between two files, and there is nothing to tell.
class system_catalog final : public spotlight_catalog
{
public:
    std::shared_ptr<spotlight_item> item(const evidence::resolved_path &place) override;
    QStringList take_notes() override { return {}; }
};

std::shared_ptr<spotlight_item> system_catalog::item(const evidence::resolved_path &place)
{
    using answer = std::unique_ptr<spotlight_item>;
    return contained_in_pool(answer(), [&place]() -> answer {
        const cf_ref<CFStringRef> name = cfstring_of(place.path);
        if (!name)
            return nullptr;
        cf_ref<MDItemRef> item(MDItemCreate(kCFAllocatorDefault, name.get()));
        if (!item)
            return nullptr;
        return std::make_unique<system_item>(std::move(item));
    });
}

} // namespace

// Neither is needed: the system reads no more than what it is asked for.
std::unique_ptr<spotlight_catalog> make_spotlight_catalog(const QString & /*source_root*/,
                                                          const run::cancellation & /*cancelled*/)
{
    return std::make_unique<system_catalog>();
}

} // namespace platform
