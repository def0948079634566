#include "formats/exif/heif_exif.h"

#include "formats/exif/byte_window.h"
#include "formats/exif/extent_source.h"
#include "formats/exif/iso_boxes.h"

#include <QHash>

#include <algorithm>
#include <vector>

namespace formats {

namespace {

constexpr int max_brand_bytes = 1024; // four each
constexpr qint64 max_table_bytes = 8LL * 1024 * 1024;
constexpr quint64 max_items = 65536;
constexpr quint64 max_extents = 1024;
constexpr qint64 max_exif_bytes = 16LL * 1024 * 1024;

constexpr int brand_bytes = 4;
constexpr int version_bytes = 4;      // and the flags of a box that has them
constexpr int info_entry_bytes = 14;  // up to the item's type
constexpr int offset_field_bytes = 4; // in front of the block
constexpr int tiff_header_bytes = 8;
constexpr int newest_location_version = 2;

constexpr const char *image_brands[] = {"heic", "heix", "heim", "heis", "hevc", "hevx", "hevm",
                                        "hevs", "mif1", "mif2", "msf1", "avif", "avis"};
constexpr quint64 exif_type = 0x45786966;    // "Exif"
constexpr quint64 picture_type = 0x70696374; // "pict"

constexpr quint64 in_file = 0;
constexpr quint64 in_item_data = 1;
constexpr quint64 method_mask = 0xf;

// Videos are built from the same boxes, but name other brands. A version stands between the major
// brand and the compatible ones.
bool names_image_brand(evidence::byte_source &file)
{
    const std::optional<iso_box> type = iso_box_walk(file).next();
    if (!type)
        return false;
    const QByteArray brands =
        file.read(type->offset, std::min<qint64>(type->length, max_brand_bytes));
    for (int at = 0; at + brand_bytes <= brands.size(); at += brand_bytes) {
        const QByteArray brand = brands.mid(at, brand_bytes);
        if (at != brand_bytes && std::any_of(std::begin(image_brands), std::end(image_brands),
                                             [&](const char *known) { return brand == known; }))
            return true;
    }
    return false;
}

// What the box "meta" says of the items of a file: which there are, what they describe, where their
// bytes are. Each question is answered in one pass over one box.
class heif_items
{
public:
    explicit heif_items(evidence::byte_source &file)
        : file_(file)
    {
        iso_box_walk top(file);
        std::optional<iso_box> meta = top.next();
        while (meta && meta->type != "meta")
            meta = top.next();
        if (!meta)
            return;
        byte_window inside(file, meta->offset, meta->length);
        iso_box_walk boxes(inside, version_bytes);
        while (std::optional<iso_box> box = boxes.next()) {
            box->offset += meta->offset;
            if (std::count(std::begin(used_boxes), std::end(used_boxes), box->type) > 0 &&
                !boxes_.contains(box->type))
                boxes_.insert(box->type, *box);
        }
    }

    // The bytes of the EXIF item that describes the primary image; null when there is none.
    [[nodiscard]] std::unique_ptr<extent_source> exif_of_primary()
    {
        iso_fields handler(table("hdlr"));
        handler.skip(version_bytes + 4);
        if (boxes_.contains("hdlr") && handler.take(4) != picture_type)
            return nullptr;
        iso_fields primary(table("pitm"));
        const int id_bytes = primary.take_version() == 0 ? 2 : 4;
        const quint64 primary_id = primary.take(id_bytes);
        if (primary.is_past_end())
            return nullptr;
        const std::optional<quint64> exif = first_exif_item(items_describing(primary_id));
        return exif ? item(*exif) : nullptr;
    }

private:
    static constexpr const char *used_boxes[] = {"hdlr", "pitm", "iinf", "iloc", "iref", "idat"};

    // The content of a box; none when it is not there as a whole, or larger than any real one.
    [[nodiscard]] QByteArray table(const char *type)
    {
        const iso_box box = boxes_.value(type);
        return box.is_whole && box.length <= max_table_bytes ? file_.read(box.offset, box.length)
                                                             : QByteArray();
    }

    // Numbers of the items that describe `wanted`, sorted.
    [[nodiscard]] std::vector<quint64> items_describing(quint64 wanted)
    {
        evidence::memory_byte_source references(table("iref"));
        iso_fields start(references.read(0, version_bytes));
        const int id_bytes = start.take_version() == 0 ? 2 : 4;
        iso_box_walk boxes(references, version_bytes);
        std::vector<quint64> found;
        while (const std::optional<iso_box> box = boxes.next()) {
            if (box->type != "cdsc")
                continue;
            iso_fields fields(references.read(box->offset, box->length));
            const quint64 from = fields.take(id_bytes);
            bool describes_it = false;
            for (quint64 left = fields.take(2); left > 0 && !fields.is_past_end(); --left)
                describes_it |= fields.take(id_bytes) == wanted && !fields.is_past_end();
            if (describes_it)
                found.push_back(from);
        }
        std::sort(found.begin(), found.end());
        return found;
    }

    // The lowest of `candidates` (sorted) that is EXIF data.
    [[nodiscard]] std::optional<quint64> first_exif_item(const std::vector<quint64> &candidates)
    {
        evidence::memory_byte_source items(table("iinf"));
        iso_fields start(items.read(0, version_bytes + 4));
        const int count_bytes = start.take_version() == 0 ? 2 : 4;
        quint64 left = start.take(count_bytes);
        iso_box_walk entries(items, version_bytes + count_bytes);
        std::optional<quint64> lowest;
        for (; left > 0; --left) {
            const std::optional<iso_box> entry = entries.next();
            if (!entry)
                break;
            iso_fields fields(
                items.read(entry->offset, std::min<qint64>(entry->length, info_entry_bytes)));
            const int version = fields.take_version();
            // Older entries have no type.
            if (entry->type != "infe" || version < 2)
                continue;
            const quint64 id = fields.take(version == 2 ? 2 : 4);
            fields.skip(2);
            if (fields.take(4) == exif_type && (!lowest || id < *lowest) &&
                std::binary_search(candidates.begin(), candidates.end(), id))
                lowest = id;
        }
        return lowest;
    }

    // How the box "iloc" writes its numbers.
    struct location_format
    {
        int version = 0;
        int offset_bytes = 0;
        int length_bytes = 0;
        int base_bytes = 0;
        int index_bytes = 0;

        explicit location_format(iso_fields *fields)
            : version(fields->take_version())
        {
            const auto sizes = static_cast<int>(fields->take(2));
            offset_bytes = sizes >> 12;
            length_bytes = sizes >> 8 & 0xf;
            base_bytes = sizes >> 4 & 0xf;
            index_bytes = version == 0 ? 0 : sizes & 0xf;
        }
        [[nodiscard]] bool is_sound() const
        {
            const int sizes[] = {offset_bytes, length_bytes, base_bytes, index_bytes};
            return version <= newest_location_version &&
                   std::all_of(std::begin(sizes), std::end(sizes),
                               [](int size) { return size == 0 || size == 4 || size == 8; });
        }
        [[nodiscard]] int id_bytes() const { return version < 2 ? 2 : 4; }
        [[nodiscard]] int extent_bytes() const { return index_bytes + offset_bytes + length_bytes; }
    };

    [[nodiscard]] std::unique_ptr<extent_source> item(quint64 wanted)
    {
        iso_fields fields(table("iloc"));
        const location_format format(&fields);
        if (!format.is_sound())
            return nullptr;
        const quint64 count = std::min(fields.take(format.id_bytes()), max_items);
        for (quint64 i = 0; i < count && !fields.is_past_end(); ++i) {
            const quint64 id = fields.take(format.id_bytes());
            const quint64 method = format.version == 0 ? in_file : fields.take(2) & method_mask;
            fields.skip(2); // which file: always this one
            const quint64 base = fields.take(format.base_bytes);
            const quint64 extents = fields.take(2);
            if (id == wanted && extents <= max_extents)
                return joined(&fields, format, method, base, extents);
            fields.skip(static_cast<qint64>(extents) * format.extent_bytes());
        }
        return nullptr;
    }

    [[nodiscard]] std::unique_ptr<extent_source> joined(iso_fields *fields,
                                                        const location_format &format,
                                                        quint64 method, quint64 base, quint64 count)
    {
        if (method != in_file && method != in_item_data)
            return nullptr;
        const iso_box item_data = boxes_.value("idat");
        const extent holder = method == in_file ? extent{0, file_.size()}
                                                : extent{item_data.offset, item_data.length};
        std::vector<extent> extents;
        qint64 total = 0;
        for (quint64 i = 0; i < count; ++i) {
            fields->skip(format.index_bytes);
            const quint64 from_base = fields->take(format.offset_bytes);
            const quint64 length = fields->take(format.length_bytes);
            const std::optional<extent> piece =
                part_of(holder, base, from_base, length, count == 1 && length == 0);
            if (fields->is_past_end() || !piece)
                return nullptr;
            extents.push_back(*piece);
            total += piece->length;
        }
        return total <= max_exif_bytes ? std::make_unique<extent_source>(file_, std::move(extents))
                                       : nullptr;
    }

    // Nullopt when it does not lie in `holder` as a whole.
    static std::optional<extent> part_of(const extent &holder, quint64 base, quint64 from_base,
                                         quint64 length, bool is_the_rest)
    {
        const auto holder_length = static_cast<quint64>(holder.length);
        if (base > holder_length || from_base > holder_length - base)
            return std::nullopt;
        const quint64 left = holder_length - base - from_base;
        if (length > left)
            return std::nullopt;
        return extent{holder.offset + static_cast<qint64>(base + from_base),
                      static_cast<qint64>(is_the_rest ? left : length)};
    }

    evidence::byte_source &file_;
    QHash<QByteArray, iso_box> boxes_; // those in "meta", the first of each type
};

} // namespace

std::unique_ptr<evidence::byte_source> heif_exif_block(evidence::byte_source &file)
{
    if (!names_image_brand(file))
        return nullptr;
    std::unique_ptr<extent_source> exif = heif_items(file).exif_of_primary();
    if (!exif)
        return nullptr;
    iso_fields offset(exif->read(0, offset_field_bytes));
    const auto start = static_cast<qint64>(offset_field_bytes + offset.take(offset_field_bytes));
    if (offset.is_past_end() || start > exif->size() - tiff_header_bytes)
        return nullptr;
    exif->start_at(start);
    return exif;
}

} // namespace formats
