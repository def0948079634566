#include "host/extract_command.h"

#include "host/options/command_line.h"
#include "host/options/extract_options.h"
#include "host/driving/extraction_run.h"
#include "host/driving/interrupt.h"
#include "host/driving/plugin_library.h"
#include "host/driving/run_stop.h"
#include "host/findings/result_draft.h"
#include "host/findings/result_place.h"
#include "host/findings/run_failures.h"
#include "host/findings/run_report.h"
#include "host/findings/run_summary.h"
#include "host/scan_command.h"
#include "host/sources/run_sources.h"
#include "host/sources/source_view.h"
#include "inventory/source_inventory.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <memory>

namespace host {

namespace {

constexpr qint64 most_lists_named = 20;

// One extraction, from the sources to the last line of the summary. Each step says why the run
// cannot go on.
class extraction
{
public:
    explicit extraction(const extract_options &options)
        : options_(options)
        , started_(QDateTime::currentDateTimeUtc())
    {
    }

    exit_status run()
    {
        interrupts_.watch([this] { stop_.request(); });
        const std::optional<failure> problem = prepare();
        const std::optional<failure> ended = problem ? problem : extract();
        interrupts_.stop();
        if (!ended)
            return finish();
        const exit_status status = report(*ended);
        for (const QString &line : qAsConst(details_))
            report({status, line});
        return status;
    }

private:
    // Everything that can be checked before anything is written.
    std::optional<failure> prepare()
    {
        source_search search = find_sources(options_, stop_.cancellation());
        details_ = search.details;
        if (search.problem)
            return search.problem;
        sources_ = std::move(search.sources);
        if (wants_lists()) {
            search_lists(options_, stop_.cancellation(), &sources_);
            if (!stop_.is_requested()) {
                if (const auto problem = check_anything_found(sources_, &details_))
                    return problem;
            }
        }
        loaded_plugin plugin = load_plugin(options_.plugin_file);
        if (plugin.problem)
            return plugin.problem;
        plugin_ = std::move(plugin.object);
        place_ = place_of_results(options_.result_directory, plugin_->pub_get_artifact_name());
        return check_place();
    }

    [[nodiscard]] bool is_of_macos() const { return options_.scheme == QLatin1String("macOS"); }

    [[nodiscard]] bool wants_lists() const { return is_of_macos(); }

    std::optional<failure> check_place() const
    {
        for (const run_source &source : sources_) {
            for (const QString &path : {source.layout.root, source.layout.path}) {
                if (const auto problem = check_apart_from_source(place_, options_.debug_log, path))
                    return problem;
            }
        }
        if (!options_.append && !options_.force) {
            if (const auto problem = check_no_result(place_))
                return problem;
        }
        return check_writable(place_, options_.debug_log);
    }

    std::optional<failure> extract()
    {
        draft_ = std::make_unique<result_draft>(place_);
        if (const auto problem = draft_->begin(options_.append))
            return problem;
        if (options_.force)
            QDir(place_.view).removeRecursively();
        std::optional<failure> problem = open_inventory();
        number_sources();
        views_.resize(sources_.size());
        if (!problem)
            problem = write_running(place_, description());
        for (size_t i = 0; i < sources_.size() && !problem; ++i)
            problem = make_view_of(i);
        if (!problem)
            begin_inventory();
        for (size_t i = 0; i < sources_.size() && !problem && !is_cancelled(); ++i) {
            wait_until_read(i);
            problem = run_plugin(i);
        }
        return problem ? problem : close();
    }

    std::optional<failure> open_inventory()
    {
        if (!options_.takes_inventory || !is_of_macos())
            return std::nullopt;
        inventory_ = std::make_unique<inventory::inventory_database>();
        if (!inventory_->open(draft_->inventory(), QFileInfo::exists(draft_->inventory())))
            return inventory_failure();
        return std::nullopt;
    }

    [[nodiscard]] failure inventory_failure() const
    {
        return {exit_status::result_unusable,
                QStringLiteral("the inventory %1 cannot be written (%2).")
                    .arg(place_.inventory, inventory_->problem())};
    }

    // An earlier result has taken the first numbers.
    void number_sources()
    {
        int next = options_.source_count;
        if (next == 0)
            next = 1 + std::max(inventory_ ? inventory_->last_source() : 0,
                                highest_source(draft_->database()));
        for (run_source &source : sources_)
            source.number = next++;
    }

    [[nodiscard]] described_run description() const
    {
        return {&options_, &sources_, &views_, started_};
    }

    std::optional<failure> make_view_of(size_t index)
    {
        if (sources_[index].layout.is_volume)
            return std::nullopt;
        const QString root =
            place_.view + QString::number(sources_[index].number) + QLatin1Char('/');
        // No result has this number: a run that was killed has left it.
        QDir(root).removeRecursively();
        views_[index] = make_view(sources_[index], root, stop_.cancellation());
        return views_[index].problem;
    }

    void begin_inventory()
    {
        if (!inventory_)
            return;
        std::vector<inventory::inventory_request> requests;
        for (const run_source &source : sources_) {
            inventory::inventory_request request;
            request.source = inventory::facts_of_source(source.layout.root);
            request.source.number = source.number;
            request.source.path = source.layout.path;
            request.source.layout = source.layout.layout;
            request.source.count_name = QStringLiteral("Source%1").arg(source.number);
            request.found = &source.found;
            request.is_volume = source.layout.is_volume;
            requests.push_back(std::move(request));
        }
        taking_ = std::make_unique<inventory::source_inventory>(
            std::move(requests), options_.jobs, stop_.cancellation(), inventory_.get());
    }

    // The plug-in then finds the lists in the system's cache.
    void wait_until_read(size_t index) const
    {
        if (!taking_)
            return;
        progress_display display(options_.progress, {QStringLiteral("reading lists")},
                                 qint64(sources_[index].found.lists.size()));
        while (!taking_->wait_until_read(index))
            display.update(taking_->progress(index).read, 0);
        display.finish();
    }

    std::optional<failure> run_plugin(size_t index)
    {
        const run_source &source = sources_[index];
        if (!plugin_) {
            loaded_plugin plugin = load_plugin(options_.plugin_file);
            if (plugin.problem)
                return plugin.problem;
            plugin_ = std::move(plugin.object);
        }
        extraction_job job;
        job.source.fs_extraction_source_path =
            source.layout.is_volume ? source.layout.root : views_[index].root;
        job.source.source_type_internal = options_.source_type;
        job.source.os_scheme_display = options_.os_display;
        job.source.os_scheme_internal = options_.scheme;
        job.source.system_account_QList = source.accounts;
        job.source_count = source.number;
        job.keeps_rows = options_.append || index > 0;
        job.result_directory = draft_->directory();
        job.own_log = draft_->log();
        if (taking_)
            job.expected_records = taking_->progress(index).promised_rows;
        const QString log = options_.debug_log.isEmpty() ? draft_->log() : options_.debug_log;
        const qint64 logged_before = QFileInfo(log).size();
        const run_result ended = run_extraction(*plugin_, options_, job, &stop_);
        plugin_.reset();
        result_.records += ended.records;
        result_.tabs += ended.tabs;
        result_.seconds += ended.seconds;
        result_.cancelled = result_.cancelled || ended.cancelled;
        add(failures_in_log(log, logged_before, options_.encipher_log));
        return std::nullopt;
    }

    void add(const run_failures &more)
    {
        failures_.count += more.count;
        failures_.first += more.first.mid(0, max_told_failures - failures_.first.size());
    }

    [[nodiscard]] bool is_cancelled() const { return result_.cancelled || stop_.is_requested(); }

    std::optional<failure> close()
    {
        result_.cancelled = is_cancelled();
        if (taking_ && !taking_->finish() && !result_.cancelled)
            return inventory_failure();
        taking_.reset();
        if (inventory_ && QFileInfo::exists(draft_->database()) &&
            !inventory_->count_rows(draft_->database(), sources_.front().number))
            warn(QStringLiteral("the rows cannot be compared with the inventory (%1).")
                     .arg(inventory_->problem()));
        if (inventory_ && !inventory_->close())
            return inventory_failure();
        inventory_.reset();
        if (const auto problem = draft_->finish(result_.cancelled))
            return problem;
        report_ = report_of({place_.database, place_.inventory, options_.tabs,
                             sources_.front().number, options_.is_verbose ? -1 : most_lists_named});
        report_.result = result_;
        report_.is_partial = result_.cancelled;
        return write_ended(place_, description(), report_);
    }

    exit_status finish()
    {
        for (const QString &message : qAsConst(failures_.first))
            warn(message);
        if (failures_.count > failures_.first.size())
            warn(QStringLiteral("and %1 more, see --debug-log.")
                     .arg(failures_.count - failures_.first.size()));
        const table_counts counts = count_tables(place_.database);
        const bool is_incomplete = failures_.count > 0 || report_.incomplete_lists > 0;
        print(options_.json
                  ? json_summary(place_, report_, counts)
                  : text_summary(place_, report_, counts, is_incomplete, !options_.is_quiet));
        if (!counts.problem.isEmpty()) {
            return host::report({exit_status::result_unusable,
                                 QStringLiteral("the result database %1 cannot be read (%2); run "
                                                "again with --debug-terminal to see why.")
                                     .arg(place_.database, counts.problem)});
        }
        if (result_.cancelled)
            return exit_status::cancelled;
        return is_incomplete ? exit_status::incomplete : exit_status::done;
    }

    const extract_options &options_;
    const QDateTime started_;
    interrupt_watcher interrupts_;
    run_stop stop_;
    std::vector<run_source> sources_;
    std::vector<source_view> views_;
    QStringList details_;
    std::unique_ptr<cyberduck> plugin_;
    result_place place_;
    std::unique_ptr<result_draft> draft_;
    std::unique_ptr<inventory::inventory_database> inventory_;
    std::unique_ptr<inventory::source_inventory> taking_; // dies before its database
    run_result result_;
    run_failures failures_;
    run_report report_;
};

} // namespace

exit_status run_extract(const QStringList &arguments)
{
    extract_options options;
    if (const auto ended = read_extract_options(arguments, options))
        return *ended;
    if (options.dry_run)
        return scan_sources(options);
    return extraction(options).run();
}

} // namespace host
