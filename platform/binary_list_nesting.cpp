#include "binary_list_nesting.h"

#include <algorithm>
#include <new>
#include <vector>

namespace platform {

namespace {

constexpr int header_bytes = 8;
constexpr int trailer_bytes = 32;

// The objects of a list as a graph.
class object_graph
{
public:
    explicit object_graph(const QByteArray &list)
        : bytes_(reinterpret_cast<const uchar *>(list.constData()))
        , size_(static_cast<quint64>(list.size()))
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

    bool read_trailer();
    [[nodiscard]] quint64 number_at(quint64 offset, quint64 bytes) const;
    // A visit without references when the object is no container.
    [[nodiscard]] visit begin_visit(quint64 object) const;

    const uchar *bytes_;
    quint64 size_;
    quint64 table_offset_ = 0;
    quint64 object_count_ = 0;
    quint64 top_object_ = 0;
    quint64 offset_bytes_ = 0;
    quint64 reference_bytes_ = 0;
};

quint64 object_graph::number_at(quint64 offset, quint64 bytes) const
{
    quint64 number = 0;
    for (quint64 index = 0; index < bytes; ++index)
        number = number << 8 | bytes_[offset + index];
    return number;
}

bool object_graph::read_trailer()
{
    if (size_ < header_bytes + trailer_bytes)
        return false;
    const quint64 trailer = size_ - trailer_bytes;
    offset_bytes_ = bytes_[trailer + 6];
    reference_bytes_ = bytes_[trailer + 7];
    object_count_ = number_at(trailer + 8, 8);
    top_object_ = number_at(trailer + 16, 8);
    table_offset_ = number_at(trailer + 24, 8);
    return offset_bytes_ >= 1 && offset_bytes_ <= 8 && reference_bytes_ >= 1 &&
           reference_bytes_ <= 8 && table_offset_ <= trailer && top_object_ < object_count_ &&
           object_count_ <= (trailer - table_offset_) / offset_bytes_;
}

object_graph::visit object_graph::begin_visit(quint64 object) const
{
    visit begun;
    begun.object = object;
    const quint64 offset = number_at(table_offset_ + object * offset_bytes_, offset_bytes_);
    if (offset >= table_offset_)
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
            content < table_offset_ ? quint64(1) << (bytes_[content] & 0x0f) : 0;
        ++content;
        if (count_bytes < 1 || count_bytes > 8 || content + count_bytes > table_offset_)
            return begun;
        count = number_at(content, count_bytes);
        content += count_bytes;
    }
    const quint64 unit = type == 0xd ? 2 : 1;
    if (count > (table_offset_ - content) / (reference_bytes_ * unit))
        return begun;
    begun.next = content;
    begun.end = content + count * unit * reference_bytes_;
    return begun;
}

bool object_graph::nests_deeper(int deepest)
{
    if (!read_trailer())
        return true;
    constexpr ushort unknown = 0;
    constexpr ushort open = 0xffff;
    // Of each object that has been seen whole.
    std::vector<ushort> heights(object_count_, unknown);
    std::vector<visit> path = {begin_visit(top_object_)};
    heights[top_object_] = open;
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
        const quint64 object = number_at(current.next, reference_bytes_);
        current.next += reference_bytes_;
        if (object >= object_count_)
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
        return object_graph(binary_list).nests_deeper(std::min(deepest, 0x7fff));
    } catch (const std::bad_alloc &) {
        return true;
    }
}

} // namespace platform
