#include "platform/property_list.h"

#include "foundation_list_reader.h"
#include "foundation_texts.h"

#include "platform/binary_list_nesting.h"
#include "platform/property_list_limits.h"
#include "platform/xml_list_check.h"
#include "platform/xml_list_encoding.h"
#include "support/evidence_file.h"

#import <Foundation/Foundation.h>

#include <new>

namespace platform {

namespace {

// Foundation calls itself for each container of a list, and a forged one could use up the stack.
// The same limits as elsewhere keep it from that. What is neither XML nor binary is the text form
// that came before them, which the client never wrote: it is not read.
bool is_safe_list(const QByteArray &bytes) {
    if (bytes.startsWith("bplist"))
        return !nests_deeper(bytes, deepest_list_level + 1);
    QByteArray copy(bytes.constData(), bytes.size());
    QByteArray converted;
    const xml_list_text text = xml_list_as_utf8(&copy, &converted);
    const qint64 largest_count = largest_list_memory_bytes / xml_element_bytes;
    return text.begin != nullptr &&
           check_xml_list(text.begin, text.end, largest_count).begin != nullptr;
}

// The top value, owned by the caller; nil when the bytes are no list.
id new_list(const QByteArray &bytes) {
    if (bytes.size() > largest_list_bytes || !is_safe_list(bytes))
        return nil;
    const autorelease_scope pool;
    @try {
        NSData *const data = [NSData dataWithBytesNoCopy:const_cast<char *>(bytes.constData())
                                                  length:static_cast<NSUInteger>(bytes.size())
                                            freeWhenDone:NO];
        return [[NSPropertyListSerialization propertyListWithData:data
                                                          options:NSPropertyListImmutable
                                                           format:nullptr
                                                            error:nullptr] retain];
    } @catch (...) {
    }
    return nil;
}

} // namespace

class property_list::implementation {
  public:
    owned_object list;
};

property_list::property_list() : implementation_(std::make_unique<implementation>()) {}

property_list::~property_list() = default;

// What dictionaryWithContentsOfFile: does, with one difference: it would follow links and wait for
// the writer of a FIFO.
bool property_list::load(const QString &path) {
    implementation_->list.reset(nil);
    support::evidence_file file;
    QByteArray bytes;
    try {
        if (!file.open(path) || !file.read_all(&bytes, largest_list_bytes))
            return false;
    } catch (const std::bad_alloc &) {
        return false;
    }
    if (load_bytes(bytes) && root().is(value_kind::dictionary))
        return true;
    implementation_->list.reset(nil);
    return false;
}

bool property_list::load_bytes(const QByteArray &bytes) {
    implementation_->list.reset(nil);
    try {
        implementation_->list.reset(new_list(bytes));
    } catch (const std::bad_alloc &) {
        return false;
    }
    return !root().is(value_kind::absent);
}

property_list_value property_list::root() const {
    const id list = implementation_->list.get();
    if (list == nil)
        return {};
    return {&foundation_list_reader(), reinterpret_cast<property_list_node>(list)};
}

} // namespace platform
