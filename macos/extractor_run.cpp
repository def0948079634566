#include "extractor_run.h"

#include "platform/foundation_values.h"
#include "support/plugin_static_function.h"

namespace macos {

namespace {

constexpr int seconds_digits = 10; // of a time stamp between 2001 and 2286

} // namespace

QString trimmed_text(const platform::property_list_value &dictionary, const QString &key)
{
    return dictionary.value(key).text().trimmed();
}

QString seconds_text(const platform::property_list_value &dictionary, const QString &key)
{
    return trimmed_text(dictionary, key).left(seconds_digits);
}

platform::property_list_value dictionary_of(const platform::property_list_value &parent,
                                            const QString &key)
{
    const platform::property_list_value value = parent.value(key);
    return value.is(platform::value_kind::dictionary) ? value : platform::property_list_value();
}

QString recorded_path(const platform::property_list_value &parent, const QString &key)
{
    return trimmed_text(dictionary_of(parent, key), QStringLiteral("Path"));
}

row_origin origin_of(const QString &user, const run_environment &environment)
{
    row_origin origin;
    origin.system_user = user;
    origin.source_count_name = plugin_static_function::get_source_count_name();
    origin.os_scheme_display = environment.os_display;
    return origin;
}

void set_place(const QString &path, const path_mapper &paths, row_origin *row)
{
    const QPair<QString, QString> files = paths.source_files(path, row->system_user);
    row->source_file = files.first;
    row->artifacts_relation_source_file = files.second;
}

extractor_run::extractor_run(const extractor_profile &profile, const run_environment &environment)
    : profile_(profile)
    , environment_(environment)
    , paths_(environment.source_root, environment.source_type)
    , boundary_(environment.source_root)
    , connection_(QLatin1String(profile.words.signature), environment.database_path)
{
}

void extractor_run::log(const char *words, const QString &value) const
{
    if (plugin_static_function::debug_mode_status_bool)
        plugin_static_function::app_debug(QLatin1String(words) + value,
                                          QLatin1String(profile_.words.signature));
}

bool extractor_run::open()
{
    log(profile_.words.starts);
    if (!connection_.open()) {
        log(profile_.words.database_failed);
        log(profile_.words.failed_end);
        return false;
    }
    statement_.emplace(connection_, profile_.statement);
    return true;
}

void extractor_run::read_lists(const QStringList &folders,
                               const std::function<step(const loaded_list &)> &read)
{
    for (const QString &folder : folders) {
        if (is_cancelled() || read_folder(folder, read) == step::cancelled) {
            close();
            return;
        }
    }
    close();
    log(profile_.words.ends);
}

void extractor_run::close()
{
    statement_.reset();
    if (!connection_.finish())
        rows_lost(connection_.error_text());
}

void extractor_run::rows_lost(const QString &error)
{
    log(profile_.words.commit_failed, error);
    environment_.uncount_rows(uncommitted_rows_);
    uncommitted_rows_ = 0;
}

step extractor_run::read_folder(const QString &folder,
                                const std::function<step(const loaded_list &)> &read)
{
    const QString user =
        plugin_static_function::extract_user_name_from_sourcefile(folder, environment_.source_root)
            .first;
    const support::resolved_path real = boundary_.resolve(folder);
    if (real.where == support::reach::outside)
        log(profile_.words.outside_source, folder);
    else if (real.where != support::reach::inside)
        log(profile_.words.folder_failed, folder);
    if (real.where != support::reach::inside)
        return step::done;
    origin_ = origin_of(user, environment_);
    support::folder_walk walk(folder, real.path);
    while (walk.next()) {
        if (is_cancelled())
            return step::cancelled;
        if (walk.name().endsWith(profile_.suffix) &&
            read_entry(walk, user, read) == step::cancelled)
            return step::cancelled;
    }
    const QStringList failed = walk.take_failed();
    for (const QString &path : failed)
        log(profile_.words.folder_failed, path);
    return step::done;
}

extractor_run::found extractor_run::load_entry(const support::folder_walk &walk)
{
    if (!walk.path_is_text()) {
        log(profile_.words.path_failed, walk.path());
        return found::nothing;
    }
    if (walk.kind() != support::folder_walk::entry_kind::link)
        return list_.load(walk) ? found::list : found::no_list;
    const support::resolved_path real = boundary_.resolve(walk.real_path());
    if (real.where == support::reach::inside)
        return list_.load(real.path) ? found::list : found::no_list;
    if (real.where == support::reach::outside)
        log(profile_.words.outside_source, walk.path());
    if (real.where == support::reach::denied)
        log(profile_.words.list_failed, walk.path());
    return found::nothing; // a dangling link is no entry
}

step extractor_run::read_entry(const support::folder_walk &walk, const QString &user,
                               const std::function<step(const loaded_list &)> &read)
{
    const platform::release_pool pool; // for what the values of this list leave to one
    const found outcome = load_entry(walk);
    if (outcome == found::nothing)
        return step::done;
    const QString path = walk.path();
    if (outcome == found::no_list) {
        log(profile_.words.list_failed, path);
        return step::done;
    }
    stored_units_ = 0;
    const step ended = read({path, user, list_.root()});
    if (list_.root().take_cut_text())
        log(profile_.words.text_cut, path);
    if (list_.root().has_left_out())
        log(profile_.words.values_left_out, path);
    return ended;
}

void extractor_run::insert_failed()
{
    const extractor_words &words = profile_.words;
    log(words.insert_failed,
        words.insert_failed_names_database ? environment_.database_path : QString());
    log(words.insert_error, statement_->error_text());
    log(words.insert_query, statement_->executed_query());
    if (connection_.begin_after_loss())
        rows_lost(statement_->error_text());
}

} // namespace macos
