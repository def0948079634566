#include "extraction/lists/list_run.h"

#include "evidence/files/file_names.h"
#include "platform/foundation_values.h"

namespace extraction {

list_run::list_run(extractor *reader, const extraction_context &context)
    : reader_(reader)
    , profile_(reader->profile())
    , context_(context)
    , paths_(context.source.root, context.source.type)
    , boundary_(context.source.root, context.cancelled)
    , rows_(context.database_path, profile_.words.rows, profile_.statement, context.database(),
            &context.counter)
{
}

void list_run::log(const char *words, const QString &value) const
{
    context_.log.write_filled(words, value, profile_.words.rows.signature);
}

bool list_run::open()
{
    const extractor_words &words = profile_.words;
    if (rows_.open())
        return true;
    log(words.database_failed);
    if (words.database_error != nullptr)
        log(words.database_error, rows_.error_text());
    if (words.database_path != nullptr)
        log(words.database_path, context_.database_path);
    if (words.failed_end != nullptr)
        log(words.failed_end);
    return false;
}

void list_run::read_folders(const QStringList &folders)
{
    log(profile_.words.starts);
    if (!open())
        return;
    for (const QString &folder : folders) {
        if (is_cancelled() || read_folder(folder) == step::cancelled) {
            rows_.close();
            return;
        }
    }
    rows_.close();
    log(profile_.words.ends);
}

void list_run::read_file(const QString &path, const QString &user)
{
    log(profile_.words.starts);
    if (path.trimmed().isEmpty() || !open())
        return;
    const platform::release_pool pool; // for objects made while this list is read
    if (!load_file(path))
        return;
    const step ended = read_loaded(path, origin_of(user, context_.source));
    rows_.close();
    if (ended == step::done)
        log(profile_.words.ends);
}

step list_run::read_folder(const QString &folder)
{
    const QString user =
        user_of_source_file(folder, context_.source.root, context_.source.accounts).name;
    const evidence::resolved_path real = boundary_.resolve(folder);
    if (is_cancelled())
        return step::cancelled;
    if (real.where == evidence::reach::outside)
        log(profile_.words.outside_source, folder);
    else if (real.where != evidence::reach::inside)
        log(profile_.words.folder_failed, folder);
    if (real.where != evidence::reach::inside)
        return step::done;
    const row_origin origin = origin_of(user, context_.source);
    evidence::folder_walk walk(folder, real.path);
    while (walk.next()) {
        if (is_cancelled())
            return step::cancelled;
        if (walk.name().endsWith(profile_.suffix) && read_entry(walk, origin) == step::cancelled)
            return step::cancelled;
    }
    const QStringList failed = walk.take_failed();
    for (const QString &path : failed)
        log(profile_.words.folder_failed, path);
    return step::done;
}

list_run::found list_run::load_entry(const evidence::folder_walk &walk)
{
    if (!walk.path_is_text()) {
        log(profile_.words.path_failed, walk.path());
        return found::nothing;
    }
    if (walk.kind() != evidence::folder_walk::entry_kind::link)
        return list_.load(walk) ? found::list : found::no_list;
    const evidence::resolved_path real = boundary_.resolve(walk.real_path());
    if (real.where == evidence::reach::inside)
        return list_.load(real.path) ? found::list : found::no_list;
    if (real.where == evidence::reach::outside)
        log(profile_.words.outside_source, walk.path());
    if (real.where == evidence::reach::denied)
        log(profile_.words.list_failed, walk.path());
    return found::nothing; // a dangling link is no entry
}

step list_run::read_entry(const evidence::folder_walk &walk, const row_origin &folder_origin)
{
    const platform::release_pool pool; // for objects made while this list is read
    const found outcome = load_entry(walk);
    if (outcome == found::list)
        return read_loaded(walk.path(), folder_origin);
    if (is_cancelled())
        return step::cancelled;
    if (outcome == found::no_list)
        log(profile_.words.list_failed, walk.path());
    return step::done;
}

step list_run::read_loaded(const QString &path, const row_origin &origin)
{
    rows_.begin_list();
    loaded_list list = {path, origin.system_user, list_.root(), origin};
    set_place(path, paths_, &list.origin);
    const step ended = reader_->read(list, this);
    if (list.root.take_cut_text())
        log(profile_.words.text_cut, path);
    if (list.root.has_left_out())
        log(profile_.words.values_left_out, path);
    return ended;
}

bool list_run::load_file(const QString &path)
{
    // A path that does not survive the system's encoding opens nothing.
    if (evidence::decoded_name(evidence::encoded_name(path)) != path) {
        log(profile_.words.path_failed, path);
        return false;
    }
    const evidence::resolved_path real = boundary_.resolve(path);
    if (real.where == evidence::reach::inside && list_.load(real.path))
        return true;
    if (is_cancelled())
        return false;
    log(real.where == evidence::reach::outside ? profile_.words.outside_source
                                               : profile_.words.list_failed,
        path);
    return false;
}

} // namespace extraction
