#include "platform/property_list.h"

#include "platform/apple/contained.h"
#include "platform/apple/foundation_reader.h"

#include "platform/safe_list.h"
#include "evidence/folders/folder_walk.h"

namespace platform {

namespace {

cf_ref<CFTypeRef> retained(NSObject *object)
{
    return cf_ref<CFTypeRef>(object == nil ? nullptr : CFRetain(object));
}

cf_ref<CFTypeRef> dictionary_of_file(const QString &path)
{
    const cf_ref<CFStringRef> name = cfstring_of(path);
    return retained([NSDictionary dictionaryWithContentsOfFile:as_nsstring(name)]);
}

cf_ref<CFTypeRef> list_of_bytes(const QByteArray &bytes)
{
    NSData *data = [NSData dataWithBytes:bytes.constData()
                                  length:static_cast<NSUInteger>(bytes.size())];
    return retained([NSPropertyListSerialization propertyListWithData:data
                                                              options:NSPropertyListImmutable
                                                               format:nullptr
                                                                error:nullptr]);
}

} // namespace

// The values are Foundation's own, kept alive through the top one.
class property_list::implementation
{
public:
    cf_ref<CFTypeRef> root;
};

property_list::property_list()
    : implementation_(std::make_unique<implementation>())
{
}

property_list::~property_list() = default;

bool property_list::load(const QString &path)
{
    // The former list goes before the next one comes: two would take twice the memory.
    implementation_->root = cf_ref<CFTypeRef>();
    // Foundation would also wait for the writer of a FIFO, and follow a link.
    if (is_safe_list_file(path))
        implementation_->root =
            contained_in_pool(cf_ref<CFTypeRef>(), [&path] { return dictionary_of_file(path); });
    return root().is(formats::value_kind::dictionary);
}

bool property_list::load(const evidence::folder_walk &entry)
{
    return load(entry.real_path());
}

bool property_list::load_bytes(const QByteArray &bytes)
{
    implementation_->root = cf_ref<CFTypeRef>();
    if (is_safe_list(bytes))
        implementation_->root =
            contained_in_pool(cf_ref<CFTypeRef>(), [&bytes] { return list_of_bytes(bytes); });
    return !root().is(formats::value_kind::absent);
}

formats::property_list_value property_list::root() const
{
    return value_of(implementation_->root.get());
}

} // namespace platform
