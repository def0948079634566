#include "safe_list.h"

#include "binary_list_nesting.h"
#include "property_list_limits.h"
#include "support/evidence_file.h"
#include "xml_list_check.h"
#include "xml_list_encoding.h"

#include <new>

namespace platform {

namespace {

bool is_safe_xml_list(const QByteArray &bytes)
{
    QByteArray copy(bytes.constData(), bytes.size());
    QByteArray converted;
    const xml_list_text text = xml_list_as_utf8(&copy, &converted);
    constexpr qint64 largest_count = largest_list_memory_bytes / xml_element_bytes;
    return text.begin != nullptr &&
           check_xml_list(text.begin, text.end, largest_count).begin != nullptr;
}

} // namespace

bool is_safe_list(const QByteArray &bytes)
{
    if (bytes.size() > largest_list_bytes)
        return false;
    try {
        return bytes.startsWith("bplist") ? !nests_deeper(bytes, deepest_list_level + 1)
                                          : is_safe_xml_list(bytes);
    } catch (const std::bad_alloc &) {
        return false;
    }
}

bool is_safe_list_file(const QString &path)
{
    try {
        support::evidence_file file;
        QByteArray bytes;
        return file.open(path) && file.read_all(&bytes, largest_list_bytes) && is_safe_list(bytes);
    } catch (const std::bad_alloc &) {
        return false;
    }
}

} // namespace platform
