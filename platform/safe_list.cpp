#include "platform/safe_list.h"

#include "formats/property_list/binary/binary_list_nesting.h"
#include "formats/property_list/base/property_list_limits.h"
#include "evidence/files/evidence_file.h"
#include "formats/property_list/xml/xml_list_check.h"
#include "formats/property_list/xml/xml_list_encoding.h"

#include <new>

namespace platform {

namespace {

bool is_safe_xml_list(const QByteArray &bytes)
{
    QByteArray copy(bytes.constData(), bytes.size());
    QByteArray converted;
    const formats::xml_list_text text = formats::xml_list_as_utf8(&copy, &converted);
    constexpr qint64 max_count = formats::max_list_memory_bytes / formats::xml_element_bytes;
    return text.begin != nullptr &&
           formats::check_xml_list(text.begin, text.end, max_count).begin != nullptr;
}

} // namespace

bool is_safe_list(const QByteArray &bytes)
{
    if (bytes.size() > formats::max_list_bytes)
        return false;
    try {
        return bytes.startsWith("bplist")
                   ? !formats::nests_deeper(bytes, formats::max_list_levels + 1)
                   : is_safe_xml_list(bytes);
    } catch (const std::bad_alloc &) {
        return false;
    }
}

bool is_safe_list_file(const QString &path)
{
    try {
        evidence::evidence_file file;
        QByteArray bytes;
        return file.open(path) && file.read_all(&bytes, formats::max_list_bytes) &&
               is_safe_list(bytes);
    } catch (const std::bad_alloc &) {
        return false;
    }
}

} // namespace platform
