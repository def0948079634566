#include "formats/apple_double/apple_double.h"

#include "formats/attributes/attribute_name.h"
#include "evidence/access/extended_attribute_bytes.h"

#include <QtEndian>

#include <algorithm>
#include <utility>

namespace formats {

namespace {

constexpr quint32 magic = 0x00051607;
constexpr quint32 version_1 = 0x00010000;
constexpr quint32 version_2 = 0x00020000;

constexpr qint64 min_file_bytes = 82; // header, two entries, Finder information
constexpr qint64 max_file_bytes = 16LL * 1024 * 1024;
constexpr qint64 max_head_bytes = 65536; // header and attribute entries must lie in here

constexpr int version_offset = 4;
constexpr int entry_count_offset = 24;
constexpr quint64 entries_offset = 26;
constexpr quint64 entry_bytes = 12;
constexpr quint64 max_entries = 15;
constexpr quint32 finder_entry_type = 9;
constexpr quint64 finder_info_bytes = 32;
constexpr char finder_info_name[] = "com.apple.FinderInfo";

// The attribute block follows the Finder information and two bytes of padding.
constexpr quint64 block_offset_in_entry = finder_info_bytes + 2;
constexpr quint32 block_magic = 0x41545452; // ATTR
constexpr quint64 block_header_bytes = 36;
constexpr quint64 total_size_offset = 8;
constexpr quint64 values_offset = 12;
constexpr quint64 values_length_offset = 16;
constexpr quint64 attribute_count_offset = 34;
constexpr int max_attributes = 256;

constexpr quint64 name_length_offset = 10;
constexpr quint64 name_offset = 11;
constexpr quint64 attribute_alignment = 4;

// The caller has checked that the number lies inside.
template <typename Number> Number number_at(const QByteArray &bytes, quint64 offset)
{
    return qFromBigEndian<Number>(bytes.constData() + offset);
}

bool is_inside(quint64 offset, quint64 length, quint64 begin, quint64 end)
{
    return offset >= begin && offset <= end && length <= end - offset;
}

} // namespace

std::unique_ptr<apple_double> apple_double::read(std::unique_ptr<evidence::byte_source> file)
{
    if (!file || file->size() < min_file_bytes || file->size() > max_file_bytes)
        return nullptr;
    const QByteArray head = file->read(0, max_head_bytes);
    if (head.size() < min_file_bytes || number_at<quint32>(head, 0) != magic)
        return nullptr;
    const auto version = number_at<quint32>(head, version_offset);
    if (version != version_1 && version != version_2)
        return nullptr;
    std::unique_ptr<apple_double> result(new apple_double(std::move(file)));
    if (!result->read_entries(head))
        return nullptr;
    const auto finder =
        std::find_if(result->entries_.cbegin(), result->entries_.cend(),
                     [](const entry &candidate) { return candidate.type == finder_entry_type; });
    if (finder == result->entries_.cend())
        return result;
    result->read_finder_entry(head, *finder);
    if (version == version_2 && !result->read_attributes(head, *finder))
        return nullptr;
    return result;
}

apple_double::apple_double(std::unique_ptr<evidence::byte_source> file)
    : file_(std::move(file))
{
}

bool apple_double::read_entries(const QByteArray &head)
{
    const quint64 count = number_at<quint16>(head, entry_count_offset);
    const quint64 table_end = entries_offset + count * entry_bytes;
    if (count > max_entries || table_end > static_cast<quint64>(head.size()))
        return false;
    for (quint64 at = entries_offset; at < table_end; at += entry_bytes) {
        entries_.push_back({number_at<quint32>(head, at), number_at<quint32>(head, at + 4),
                            number_at<quint32>(head, at + 8)});
    }
    return has_sound_entries(table_end);
}

bool apple_double::has_sound_entries(quint64 table_end) const
{
    const auto file_end = static_cast<quint64>(file_->size());
    for (auto one = entries_.cbegin(); one != entries_.cend(); ++one) {
        if (!is_inside(one->offset, one->length, table_end, file_end))
            return false;
        for (auto other = entries_.cbegin(); other != one; ++other) {
            if (one->offset < other->end() && other->offset < one->end())
                return false;
        }
    }
    return true;
}

void apple_double::read_finder_entry(const QByteArray &head, const entry &finder)
{
    if (finder.length < finder_info_bytes ||
        !is_inside(finder.offset, finder_info_bytes, 0, static_cast<quint64>(head.size())))
        return;
    const QByteArray info = head.mid(static_cast<int>(finder.offset), finder_info_bytes);
    if (info.count('\0') != info.size()) // zeros mean none
        finder_info_ = info;
}

bool apple_double::read_attributes(const QByteArray &head, const entry &finder)
{
    const auto head_end = static_cast<quint64>(head.size());
    const quint64 block = finder.offset + block_offset_in_entry;
    if (finder.length < block_offset_in_entry + block_header_bytes ||
        !is_inside(block, block_header_bytes, 0, head_end) ||
        number_at<quint32>(head, block) != block_magic)
        return true; // Finder information alone
    const quint64 total_end = number_at<quint32>(head, block + total_size_offset);
    const quint64 values = number_at<quint32>(head, block + values_offset);
    const quint64 values_length = number_at<quint32>(head, block + values_length_offset);
    const int count = number_at<quint16>(head, block + attribute_count_offset);
    const quint64 first_entry = block + block_header_bytes;
    if (total_end > finder.end() || count > max_attributes ||
        !is_inside(values, values_length, first_entry, total_end))
        return false;
    const QByteArray entries = head.left(static_cast<int>(std::min(values, head_end)));
    quint64 at = first_entry;
    for (int i = 0; i < count; ++i) {
        attribute_place place;
        at = read_attribute_entry(entries, at, &place);
        if (at == 0 || !is_inside(place.offset, place.length, values, values + values_length))
            break;
        attributes_.push_back(std::move(place));
    }
    return true;
}

quint64 apple_double::read_attribute_entry(const QByteArray &entries, quint64 at,
                                           attribute_place *place)
{
    const auto end = static_cast<quint64>(entries.size());
    if (!is_inside(at, name_offset, 0, end))
        return 0;
    const auto name_length =
        static_cast<quint8>(entries[static_cast<int>(at + name_length_offset)]);
    if (!is_inside(at + name_offset, name_length, 0, end))
        return 0;
    const QByteArray name = entries.mid(static_cast<int>(at + name_offset), name_length);
    if (name.size() < 2 || name.indexOf('\0') != name.size() - 1)
        return 0;
    *place = {without_copying_flags(name.left(name.size() - 1)), number_at<quint32>(entries, at),
              number_at<quint32>(entries, at + 4)};
    const quint64 name_end = at + name_offset + name_length;
    return (name_end + attribute_alignment - 1) / attribute_alignment * attribute_alignment;
}

std::optional<QByteArray> apple_double::attribute(const QByteArray &canonical_name) const
{
    if (canonical_name == finder_info_name && !finder_info_.isEmpty())
        return finder_info_;
    for (const attribute_place &place : attributes_) {
        if (place.canonical_name != canonical_name ||
            place.length > evidence::max_attribute_value_bytes)
            continue;
        const QByteArray value =
            file_->read(static_cast<qint64>(place.offset), static_cast<qint64>(place.length));
        if (static_cast<quint64>(value.size()) == place.length)
            return value;
    }
    return std::nullopt;
}

} // namespace formats
