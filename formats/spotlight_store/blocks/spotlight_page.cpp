#include "formats/spotlight_store/blocks/spotlight_page.h"

#include "formats/spotlight_store/blocks/spotlight_cursor.h"
#include "formats/spotlight_store/blocks/spotlight_unpack.h"

#include <algorithm>

namespace formats {

namespace {

constexpr std::string_view page_signature = "2pbd";
constexpr quint32 header_bytes = 20;
constexpr quint32 table_header_bytes = 32;
constexpr quint32 least_page_bytes = 32;
constexpr quint32 max_page_bytes = 1024 * 1024;

constexpr quint32 low_type_mask = 0xff;
constexpr quint32 records_type = 0x09;
// Neither zlib nor LZ4 can unpack to more; a forged size does not cost more memory than that.
constexpr qint64 max_plain_per_packed_byte = 1040;

constexpr quint32 lz4_bit = 0x1000;
constexpr quint32 lzfse_bit = 0x2000;

struct page_header
{
    quint32 size_bytes = 0;
    quint32 used_bytes = 0; // the header included
    quint32 type = 0;
    quint32 plain_bytes = 0; // the header included; 0 = not packed
};

bool parse_header(std::string_view bytes, page_header *header)
{
    spotlight_cursor input(bytes);
    std::string_view signature;
    return input.take(page_signature.size(), &signature) && signature == page_signature &&
           input.read_u32(&header->size_bytes) && input.read_u32(&header->used_bytes) &&
           input.read_u32(&header->type) && input.read_u32(&header->plain_bytes) &&
           header->size_bytes >= least_page_bytes && header->size_bytes <= max_page_bytes;
}

// The page's bytes in use, header included; null when there is no page of that type.
QByteArray read_page(evidence::byte_source &file, quint32 block, quint32 low_type,
                     quint32 least_used, page_header *header)
{
    const qint64 offset = block * spotlight_block_bytes;
    const QByteArray start = file.read(offset, header_bytes);
    if (!parse_header({start.constData(), static_cast<size_t>(start.size())}, header) ||
        (header->type & low_type_mask) != low_type)
        return {};
    header->used_bytes = std::clamp(header->used_bytes, least_used, header->size_bytes);
    QByteArray page = file.read(offset, header->used_bytes);
    return static_cast<quint32>(page.size()) < least_used ? QByteArray() : page;
}

// The most that a page can unpack to.
int plain_bytes(const page_header &header, std::string_view packed)
{
    const qint64 announced = qint64(header.plain_bytes) - header_bytes;
    const qint64 possible = max_plain_per_packed_byte * static_cast<qint64>(packed.size());
    return static_cast<int>(
        std::clamp<qint64>(announced, 0, std::min<qint64>(possible, max_plain_page_bytes)));
}

QByteArray unpack(const page_header &header, std::string_view packed, int most)
{
    if ((header.type & lz4_bit) == 0)
        return unpack_zlib(packed, most);
    return starts_with_lz4_frame(packed) ? unpack_lz4_frames(packed, most)
                                         : unpack_lz4_block(packed, most);
}

} // namespace

spotlight_page read_table_page(evidence::byte_source &file, quint32 block, quint32 low_type)
{
    page_header header;
    const QByteArray bytes = read_page(file, block, low_type, table_header_bytes, &header);
    if (bytes.isEmpty())
        return {};
    spotlight_page page;
    page.state = spotlight_page_state::read;
    page.stored_bytes = header.size_bytes;
    page.next_block = little_endian_u32({bytes.constData(), table_header_bytes}, header_bytes);
    page.content = bytes.mid(table_header_bytes);
    return page;
}

spotlight_page read_record_page(evidence::byte_source &file, quint32 block,
                                spotlight_budget *budget)
{
    page_header header;
    const QByteArray bytes = read_page(file, block, records_type, header_bytes, &header);
    if (bytes.isEmpty())
        return {};
    const auto packed =
        std::string_view(bytes.constData(), static_cast<size_t>(bytes.size())).substr(header_bytes);
    const bool is_packed = header.plain_bytes != 0;
    const int most = is_packed ? plain_bytes(header, packed) : 0;
    spotlight_page page;
    page.state = spotlight_page_state::read;
    page.stored_bytes = header.size_bytes;
    if (is_packed && (header.type & lzfse_bit) != 0)
        page.state = spotlight_page_state::packed_with_lzfse;
    else if (!budget->charge(most + qint64{bytes.size()}))
        page.state = spotlight_page_state::too_costly;
    else
        page.content = is_packed ? unpack(header, packed, most) : bytes.mid(header_bytes);
    return page;
}

} // namespace formats
