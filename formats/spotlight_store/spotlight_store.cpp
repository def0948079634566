#include "formats/spotlight_store/spotlight_store.h"

#include "formats/spotlight_store/spotlight_record.h"
#include "formats/spotlight_store/spotlight_value_decoder.h"
#include "evidence/files/system_errors.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace formats {

namespace {

// The second one is usually the newer; it wins between records of the same time.
constexpr const char *file_names[] = {"store.db", ".store.db"};

constexpr size_t max_cached_pages = 8;
constexpr qint64 max_cached_bytes = qint64(8) * 1024 * 1024;

// The name as stored, empty when the record has none.
std::string_view file_name_of(const spotlight_cursor &attributes, const spotlight_tables &tables)
{
    std::string_view name;
    spotlight_attribute_walk walk(attributes.rest(), tables);
    while (walk.next()) {
        if (!walk.type().is_file_name || walk.type().value_type != spotlight_text)
            continue;
        spotlight_cursor value(walk.value());
        quint64 length = 0;
        if (value.read_varint(&length))
            name = value.rest().substr(0, value.rest().find('\0'));
    }
    return name;
}

} // namespace

spotlight_store::spotlight_store(std::unique_ptr<evidence::byte_folder> folder, QString shown_name,
                                 spotlight_budget *budget)
    : folder_(std::move(folder))
    , shown_name_(std::move(shown_name))
    , budget_(budget)
{
}

bool spotlight_store::load()
{
    open_files();
    for (int number = 0; number < static_cast<int>(files_.size()); ++number) {
        if (!index_file(number))
            return false;
    }
    index_.finish();
    if (index_.ids_are_hashes())
        reasons_ << shown_name_ + QStringLiteral(": not the index of a volume's files");
    return index_.size() > 0 && !index_.ids_are_hashes();
}

void spotlight_store::open_files()
{
    std::shared_ptr<const spotlight_tables> side_tables;
    for (size_t number = 0; number < files_.size(); ++number) {
        const QString name = QString::fromLatin1(file_names[number]);
        std::unique_ptr<spotlight_store_file> pages = open_file(name);
        if (pages == nullptr)
            continue;
        const bool beside = pages->has_side_tables();
        if (beside && side_tables == nullptr)
            side_tables = load_side_tables(*folder_, budget_);
        auto tables = beside ? side_tables : pages->load_tables();
        if (!explain(*tables, beside ? shown_name_ : shown_name_ + QLatin1Char('/') + name))
            continue;
        files_[number].tables = std::move(tables);
        files_[number].pages = std::move(pages);
    }
    if (!refused_files_.isEmpty())
        reasons_ << shown_name_ + QLatin1Char('/') + refused_files_.join(QLatin1String(" and ")) +
                        QStringLiteral(": Spotlight index not readable: ") +
                        evidence::system_error_text(refusal_);
}

// Null when it is not there, or cannot be used; what is told of it then.
std::unique_ptr<spotlight_store_file> spotlight_store::open_file(const QString &name)
{
    int error = 0;
    std::unique_ptr<evidence::byte_source> bytes = folder_->open(name, &error);
    if (bytes == nullptr) {
        if (evidence::is_refusal(error)) {
            refused_files_ << name;
            refusal_ = error;
        }
        return nullptr;
    }
    auto pages = std::make_unique<spotlight_store_file>(std::move(bytes), budget_);
    const QString shown = shown_name_ + QLatin1Char('/') + name;
    if (pages->state() == spotlight_file_state::old_version)
        reasons_ << shown + QStringLiteral(": old version of the index, not read");
    if (pages->state() == spotlight_file_state::not_a_store)
        reasons_ << shown + QStringLiteral(": not an index, or a damaged header");
    return pages->state() == spotlight_file_state::sound ? std::move(pages) : nullptr;
}

// False when no record can be found by these tables. Two files can share them.
bool spotlight_store::explain(const spotlight_tables &tables, const QString &shown)
{
    QString reason;
    if (!tables.has_attributes())
        reason = QStringLiteral(": no attribute names were found, index not used");
    else if (!tables.names_files())
        reason = QStringLiteral(": no attribute with names of files was found, index not used");
    else if (tables.incomplete() > 0)
        reason = QStringLiteral(": %1 damaged tables of names").arg(tables.incomplete());
    if (!reason.isNull() && !reasons_.contains(shown + reason))
        reasons_ << shown + reason;
    return tables.names_files();
}

// False when it was stopped.
bool spotlight_store::index_file(int number)
{
    const store_file &file = files_[static_cast<size_t>(number)];
    if (file.pages == nullptr)
        return true;
    const auto add = [&](quint32 block, quint32 offset, std::string_view record) {
        spotlight_cursor input(record);
        spotlight_record_head head;
        if (!read_record_head(&input, &head))
            return true;
        const std::string_view name = file_name_of(input, *file.tables);
        if (name.empty() && !spotlight_index::is_root(head.id))
            return true; // no path leads to it or through it
        return budget_->charge_memory(spotlight_index::memory_of(name)) &&
               index_.add(head, name, {number, block, offset});
    };
    const spotlight_pass_result result = file.pages->visit_records(add);
    index_.end_file();
    explain(result, QString::fromLatin1(file_names[number]));
    return !result.stopped;
}

void spotlight_store::explain(const spotlight_pass_result &result, const QString &file_name)
{
    const QString shown = shown_name_ + QLatin1Char('/') + file_name;
    if (result.pages_packed_with_lzfse > 0)
        reasons_ << shown + QStringLiteral(": %1 pages packed with LZFSE, not read")
                                .arg(result.pages_packed_with_lzfse);
    if (result.pages_damaged > 0)
        reasons_ << shown + QStringLiteral(": %1 damaged pages").arg(result.pages_damaged);
    if (result.limit_met)
        reasons_ << shown + QStringLiteral(": larger than an index can be, not read to its end");
}

std::unique_ptr<spotlight_attributes>
spotlight_store::attributes(spotlight_index::record_number record)
{
    const spotlight_record_place place = index_.place(record);
    const store_file &file = files_[static_cast<size_t>(place.file)];
    const QByteArray content = page(place.file, place.block);
    const auto bytes = record_at(content, place.offset);
    if (!bytes)
        return nullptr;
    spotlight_cursor input(*bytes);
    spotlight_record_head head;
    // An index that is written to meanwhile can hold another record there now.
    if (!read_record_head(&input, &head) || head.id != index_.stored_id(record))
        return nullptr;
    auto values = std::make_unique<spotlight_attributes>();
    spotlight_attribute_walk walk(input.rest(), *file.tables);
    spotlight_value_decoder decoder(*file.tables, budget_);
    while (walk.next()) {
        const std::string_view name = walk.type().name;
        if (auto value = decoder.decode(walk.type(), walk.value()))
            values->set(QByteArray(name.data(), static_cast<int>(name.size())), *value);
    }
    return values;
}

QByteArray spotlight_store::page(int file, quint32 block)
{
    const auto same = [&](const cached_page &cached) {
        return cached.file == file && cached.block == block;
    };
    const auto cached = std::find_if(recent_pages_.begin(), recent_pages_.end(), same);
    if (cached != recent_pages_.end()) {
        recent_pages_.splice(recent_pages_.begin(), recent_pages_, cached);
        return recent_pages_.front().content;
    }
    const QByteArray content = files_[static_cast<size_t>(file)].pages->page_content(block);
    recent_pages_.push_front({file, block, content});
    qint64 kept_bytes = 0;
    size_t kept = 0;
    // The page just read stays, however large it is.
    const auto too_many = [&](const cached_page &one) {
        kept_bytes += one.content.size();
        return kept++ > 0 && (kept > max_cached_pages || kept_bytes > max_cached_bytes);
    };
    const auto last = std::find_if(recent_pages_.begin(), recent_pages_.end(), too_many);
    recent_pages_.erase(last, recent_pages_.end());
    return content;
}

} // namespace formats
