#include "formats/spotlight_store/spotlight_store_file.h"

#include "formats/spotlight_store/blocks/spotlight_cursor.h"

#include <algorithm>
#include <utility>

namespace formats {

namespace {

constexpr std::string_view signature = "8tsd";
constexpr std::string_view old_signature = "7tsd";
constexpr std::string_view map_signatures[] = {"1mbd", "2mbd"};

constexpr qint64 header_bytes = 4096;
constexpr quint64 map_offset_field = 36;
constexpr quint64 map_size_field = 40;
constexpr quint64 page_size_field = 44;
constexpr quint64 attributes_block_field = 48;
constexpr quint64 texts_block_field = 52;
constexpr quint64 lists_block_field = 60;
constexpr quint64 localized_lists_block_field = 64;

constexpr qint64 least_page_bytes = 4096;
constexpr qint64 max_page_bytes = qint64(1024) * 1024;

constexpr qint64 map_page_header_bytes = 20;
constexpr qint64 map_entry_bytes = 16;
constexpr qint64 map_entries_at_once = 4096;
constexpr quint64 block_in_map_entry = 8; // behind the last id of the page

std::string_view view_of(const QByteArray &bytes)
{
    return {bytes.constData(), static_cast<size_t>(bytes.size())};
}

} // namespace

spotlight_store_file::spotlight_store_file(std::unique_ptr<evidence::byte_source> bytes,
                                           spotlight_budget *budget)
    : bytes_(std::move(bytes))
    , budget_(budget)
{
    budget_->grant_file(bytes_->size());
    if (parse_header())
        state_ = spotlight_file_state::sound;
}

bool spotlight_store_file::parse_header()
{
    const QByteArray header = bytes_->read(0, header_bytes);
    const std::string_view view = view_of(header);
    if (view.substr(0, old_signature.size()) == old_signature)
        state_ = spotlight_file_state::old_version;
    if (header.size() < header_bytes || view.substr(0, signature.size()) != signature)
        return false;
    map_offset_ = little_endian_u32(view, map_offset_field);
    // A file that was cut keeps the pages that its map still names.
    map_end_ = std::min(map_offset_ + little_endian_u32(view, map_size_field), bytes_->size());
    page_bytes_ = little_endian_u32(view, page_size_field);
    table_blocks_ = {little_endian_u32(view, attributes_block_field),
                     little_endian_u32(view, texts_block_field),
                     little_endian_u32(view, lists_block_field),
                     little_endian_u32(view, localized_lists_block_field)};
    return page_bytes_ >= least_page_bytes && page_bytes_ <= max_page_bytes &&
           page_bytes_ % least_page_bytes == 0 && map_offset_ < map_end_;
}

std::shared_ptr<const spotlight_tables> spotlight_store_file::load_tables() const
{
    return load_page_tables(*bytes_, table_blocks_, budget_);
}

QByteArray spotlight_store_file::page_content(quint32 block) const
{
    return read_record_page(*bytes_, block, budget_).content;
}

// One pass over the map. Counts what it reads: pages that overlap would keep it busy without end.
class spotlight_store_file::pass
{
public:
    pass(const spotlight_store_file &file, const record_visitor &visit)
        : file_(file)
        , visit_(visit)
        , stored_bytes_left_(2 * file.bytes_->size())
        , visited_(static_cast<size_t>(file.bytes_->size() / spotlight_block_bytes) + 1)
    {
    }

    spotlight_pass_result run()
    {
        qint64 offset = file_.map_offset_;
        while (offset < file_.map_end_ && !over()) {
            const QByteArray header = file_.bytes_->read(offset, map_page_header_bytes);
            if (header.size() < map_page_header_bytes)
                break;
            const qint64 size = little_endian_u32(view_of(header), 4);
            const bool has_size = size >= map_page_header_bytes && size <= file_.map_end_ - offset;
            if (!has_size || !is_map(view_of(header)))
                ++result_.pages_damaged;
            else
                visit_entries(offset, size, little_endian_u32(view_of(header), 8));
            // The next page of a damaged one is looked for where pages usually start.
            offset += has_size ? size : file_.page_bytes_;
        }
        return result_;
    }

private:
    static bool is_map(std::string_view header)
    {
        const std::string_view own = header.substr(0, signature.size());
        return std::find(std::begin(map_signatures), std::end(map_signatures), own) !=
               std::end(map_signatures);
    }

    [[nodiscard]] bool over() const { return result_.limit_met || result_.stopped; }

    void visit_entries(qint64 map_page, qint64 size, quint32 announced)
    {
        qint64 left = std::min<qint64>(announced, (size - map_page_header_bytes) / map_entry_bytes);
        qint64 offset = map_page + map_page_header_bytes;
        while (left > 0 && !over()) {
            const qint64 count = std::min(left, map_entries_at_once);
            const QByteArray entries = file_.bytes_->read(offset, count * map_entry_bytes);
            for (qint64 i = 0; (i + 1) * map_entry_bytes <= entries.size() && !over(); ++i)
                visit_page(
                    little_endian_u32(view_of(entries), static_cast<quint64>(i * map_entry_bytes) +
                                                            block_in_map_entry));
            left -= count;
            offset += count * map_entry_bytes;
        }
    }

    void visit_page(quint32 block)
    {
        if (block < visited_.size() && visited_[block])
            return;
        const spotlight_page page = block < visited_.size()
                                        ? read_record_page(*file_.bytes_, block, file_.budget_)
                                        : spotlight_page();
        if (block < visited_.size())
            visited_[block] = true;
        if (page.state == spotlight_page_state::too_costly)
            end_early();
        else if (page.state == spotlight_page_state::packed_with_lzfse)
            ++result_.pages_packed_with_lzfse;
        else if (page.content.isEmpty() || !visit_page_records(block, page.content))
            ++result_.pages_damaged;
        stored_bytes_left_ -= page.stored_bytes;
        if (stored_bytes_left_ < 0)
            result_.limit_met = true;
    }

    void end_early()
    {
        result_.stopped = file_.budget_->is_cancelled();
        result_.limit_met = !result_.stopped;
    }

    // False when bytes are left over that are no record.
    bool visit_page_records(quint32 block, const QByteArray &content)
    {
        quint32 offset = 0;
        while (!over()) {
            offset += empty_records_at(content, offset);
            const auto record = record_at(content, offset);
            if (!record)
                return offset == static_cast<quint32>(content.size());
            if (!file_.budget_->charge(2 * spotlight_object_units) ||
                !visit_(block, offset, *record))
                end_early();
            offset += static_cast<quint32>(sizeof(quint32) + record->size());
        }
        return true;
    }

    // Bytes of sizes that are zero, or of zeros up to the end: a page of nothing else would hold
    // millions of them.
    static quint32 empty_records_at(const QByteArray &content, quint32 offset)
    {
        const std::string_view rest = view_of(content).substr(offset);
        const size_t zeros = rest.find_first_not_of('\0');
        const size_t skipped = zeros == std::string_view::npos
                                   ? rest.size()
                                   : zeros / sizeof(quint32) * sizeof(quint32);
        return static_cast<quint32>(skipped);
    }

    const spotlight_store_file &file_;
    const record_visitor &visit_;
    qint64 stored_bytes_left_;
    std::vector<bool> visited_; // by block
    spotlight_pass_result result_;
};

spotlight_pass_result spotlight_store_file::visit_records(const record_visitor &visit) const
{
    if (state_ != spotlight_file_state::sound)
        return {};
    return pass(*this, visit).run();
}

std::optional<std::string_view> record_at(const QByteArray &page, quint32 offset)
{
    if (offset > static_cast<quint32>(page.size()))
        return std::nullopt;
    spotlight_cursor input(view_of(page).substr(offset));
    quint32 size = 0;
    std::string_view record;
    if (!input.read_u32(&size) || !input.take(size, &record))
        return std::nullopt;
    return record;
}

} // namespace formats
