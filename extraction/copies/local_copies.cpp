#include "extraction/copies/local_copies.h"

#include "evidence/folders/folder_size.h"
#include "text/size_and_suffix.h"

namespace extraction {

namespace {

constexpr char notes_signature[] = "void cyberduck_macos::log_metadata_notes()";
constexpr char transfers_signature[] = "void cyberduck_macos::xcode_extract_transfers()";
constexpr char folder_failed[] = "[xcode_extract_transfers] folder open ------FAILED------%1";
constexpr int max_known_copies = 16384; // about 1 KB each
constexpr qint64 milliseconds_per_second = 1000;

// Null when unknown.
QString birth_time(const evidence::held_file &file)
{
    const std::optional<qint64> born_ms = file.status().times.born_ms;
    return born_ms ? QString::number(*born_ms / milliseconds_per_second) : QString();
}

} // namespace

struct local_copies::facts
{
    usage_dates used;
    copy_attributes attributes;
    QString size; // bytes
    QString born; // seconds since 1970 UTC

    void put_into(copy_fields *fields) const
    {
        fields->last_used_date = used.last_used_date;
        fields->used_dates = used.used_dates.join(QLatin1Char(';'));
        fields->first_date = used.first_date;
        fields->last_date = used.last_date;
        static_cast<copy_attributes &>(*fields) = attributes;
        fields->file_size = size;
        fields->date_of_adding = attributes.date_added.isEmpty() ? born : attributes.date_added;
    }
};

local_copies::local_copies(const extraction_context &context)
    : context_(context)
    , paths_(context.source.root, context.source.type)
    , boundary_(context.source.root, context.cancelled)
    , of_no_file_(texts_of_selected({}, paths_, nullptr, context.cancelled))
    , of_unselected_(paths_)
    , known_(max_known_copies)
{
}

local_copies::~local_copies() = default;

platform::spotlight_catalog &local_copies::catalog()
{
    if (!catalog_)
        catalog_ = platform::make_spotlight_catalog(boundary_.real_root(), context_.cancelled);
    return *catalog_;
}

void local_copies::describe(const QString &local_path, const evidence::resolved_path &place,
                            copy_fields *fields)
{
    const bool exists = place.where == evidence::reach::inside;
    fields->file_name = local_path.mid(local_path.lastIndexOf(QLatin1Char('/')) + 1);
    fields->file_exist = exists ? QStringLiteral("YES") : QStringLiteral("NO");
    fields->suffix = text::mining_suffix(local_path);
    if (exists)
        take_facts(place, fields);
    const selected_texts selected = selected_of(local_path, place);
    fields->extended_attributes_value_for_search = selected.for_search;
    fields->extended_attributes_key_value = selected.document;
}

void local_copies::take_facts(const evidence::resolved_path &place, copy_fields *fields)
{
    if (const facts *known = known_.object(place.path)) {
        known->put_into(fields);
        return;
    }
    auto found = std::make_unique<facts>();
    if (const auto item = catalog().item(place))
        found->used = used_dates_from(*item, context_.cancelled, context_.log);
    found->attributes = attributes_at(place);
    const evidence::tree_size size = evidence::size_of(*place.file, place.path, context_.cancelled);
    if (size.bytes)
        found->size = QString::number(*size.bytes);
    if (!size.left_out.isNull())
        context_.log.write_filled(folder_failed, size.left_out, transfers_signature);
    found->born = birth_time(*place.file);
    found->put_into(fields);
    // A count that a cancellation ended early is not the folder's size: forget it.
    if (!context_.cancelled.is_requested())
        known_.insert(place.path, found.release());
}

copy_attributes local_copies::attributes_at(const evidence::resolved_path &place)
{
    const auto item = catalog().item(place);
    if (!item)
        return {};
    copy_attributes attributes = attributes_of(*item, context_.log);
    const position_texts position = position_of(place);
    attributes.latitude = position.latitude;
    attributes.longitude = position.longitude;
    return attributes;
}

selected_texts local_copies::selected_of(const QString &local_path,
                                         const evidence::resolved_path &place)
{
    if (place.where != evidence::reach::inside)
        return of_no_file_;
    if (context_.selected_attributes.isEmpty() && !context_.cancelled.is_requested())
        return {QString(), of_unselected_.of_file(local_path)};
    return selected_of({{local_path, place, context_.selected_attributes}});
}

selected_texts local_copies::selected_of(const QList<selected_file> &files)
{
    return texts_of_selected(files, paths_, &catalog(), context_.cancelled);
}

copy_attributes local_copies::attributes_of_file(const QString &path)
{
    const evidence::resolved_path place = boundary_.hold(path);
    return place.where == evidence::reach::inside ? attributes_at(place) : copy_attributes();
}

position_texts local_copies::position_of_file(const QString &path)
{
    const evidence::resolved_path place = boundary_.hold(path);
    return place.where == evidence::reach::inside ? position_of(place) : position_texts();
}

selected_texts local_copies::selected_of_files(const QStringList &paths,
                                               const QList<QStringList> &names)
{
    QList<selected_file> files;
    for (int i = 0; i < paths.size(); ++i)
        files.append({paths.at(i), boundary_.hold(paths.at(i)), names.value(i)});
    return selected_of(files);
}

void local_copies::log_notes()
{
    if (!catalog_)
        return;
    const QStringList notes = catalog_->take_notes();
    for (const QString &note : notes)
        context_.log.write(note, QLatin1String(notes_signature));
}

} // namespace extraction
