#include "formats/property_list/binary/binary_list_nesting.h"

#include "formats/property_list/binary/binary_list_trailer.h"

#include <algorithm>
#include <new>
#include <vector>

namespace formats {

namespace {

// The objects of a list as a graph.
class object_graph
{
public:
    object_graph(const QByteArray &list, const binary_list_trailer &trailer)
        : bytes_(reinterpret_cast<const uchar *>(list.constData()))
        , trailer_(trailer)
    {
    }

    bool nests_deeper(int deepest);

private:
    struct visit
    {
        quint64 object = 0;
        quint64 next = 0; // offset of the next reference
        quint64 end = 0;
        int height = 1; // values inside one another, as far as seen
    };

    [[nodiscard]] quint64 number_at(quint64 offset, quint64 bytes) const;
    // A visit without references when the object is no container.
    [[nodiscard]] visit begin_visit(quint64 object) const;

    const uchar *bytes_;
    binary_list_trailer trailer_;
};

quint64 object_graph::number_at(quint64 offset, quint64 bytes) const
{
    return big_endian_number(bytes_ + offset, bytes);
}

object_graph::visit object_graph::begin_visit(quint64 object) const
{
    visit begun;
    begun.object = object;
    const quint64 offset =
        number_at(trailer_.table_offset + object * trailer_.offset_bytes, trailer_.offset_bytes);
    if (offset >= trailer_.table_offset)
        return begun;
    const uchar marker = bytes_[offset];
    // Arrays, ordered sets, sets and dictionaries.
    const int type = marker >> 4;
    if (type != 0xa && type != 0xb && type != 0xc && type != 0xd)
        return begun;
    quint64 count = marker & 0x0f;
    quint64 content = offset + 1;
    if (count == 0x0f) {
        const quint64 count_bytes =
            content < trailer_.table_offset ? quint64(1) << (bytes_[content] & 0x0f) : 0;
        ++content;
        if (count_bytes < 1 || count_bytes > 8 || content + count_bytes > trailer_.table_offset)
            return begun;
        count = number_at(content, count_bytes);
        content += count_bytes;
    }
    const quint64 unit = type == 0xd ? 2 : 1;
    if (count > (trailer_.table_offset - content) / (trailer_.reference_bytes * unit))
        return begun;
    begun.next = content;
    begun.end = content + count * unit * trailer_.reference_bytes;
    return begun;
}

bool object_graph::nests_deeper(int deepest)
{
    constexpr ushort unknown = 0;
    constexpr ushort open = 0xffff;
    // Of each object that has been seen whole.
    std::vector<ushort> heights(trailer_.object_count, unknown);
    std::vector<visit> path = {begin_visit(trailer_.top_object)};
    heights[trailer_.top_object] = open;
    while (!path.empty()) {
        visit &current = path.back();
        if (current.next == current.end) {
            const int height = current.height;
            heights[current.object] = static_cast<ushort>(height);
            path.pop_back();
            if (!path.empty())
                path.back().height = std::max(path.back().height, height + 1);
            if (height > deepest)
                return true;
            continue;
        }
        const quint64 object = number_at(current.next, trailer_.reference_bytes);
        current.next += trailer_.reference_bytes;
        if (object >= trailer_.object_count)
            continue;
        // A container inside itself has no end.
        if (heights[object] == open || path.size() > static_cast<size_t>(deepest))
            return true;
        if (heights[object] != unknown) {
            current.height = std::max(current.height, heights[object] + 1);
        } else {
            heights[object] = open;
            path.push_back(begin_visit(object));
        }
    }
    return false;
}

} // namespace

bool nests_deeper(const QByteArray &binary_list, int deepest)
{
    try {
        const auto trailer = trailer_of(binary_list);
        return !trailer ||
               object_graph(binary_list, *trailer).nests_deeper(std::min(deepest, 0x7fff));
    } catch (const std::bad_alloc &) {
        return true;
    }
}

} // namespace formats
