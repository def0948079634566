// Adapter for macOS sources: finds what the client left in every user's home and turns it into
// rows. Its operations are spread over files by topic: settings (cyberduck_macos.cpp),
// source_discovery, extraction_driver, one file per extractor, extended_attributes.
#pragma once

#include "extended_attributes.h"
#include "extractor_run.h"
#include "platform/spotlight_item.h"
#include "plugin/host_records.h"
#include "support/plugin_static_function.h"
#include "support/source_boundary.h"

#include <QCache>
#include <QElapsedTimer>
#include <QList>
#include <QPair>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <atomic>
#include <memory>

class plugin_helper_functions;

namespace macos {

struct transfer_row;

// What the source's file system and the metadata say of one local copy.
struct local_copy_facts
{
    struct_used_date used;
    struct_GLOBAL_ARTIFACT_cfstring_attributes attributes;
    QString size; // bytes
    QString born; // seconds since 1970 UTC; null when the file system does not tell
};

// A path as it was recorded, below the source's root, and where it leads.
struct placed_file
{
    QString path;
    support::resolved_path place;
};

} // namespace macos

class cyberduck_macos : public QWidget
{
    Q_OBJECT

public:
    explicit cyberduck_macos(QWidget *parent = nullptr);
    ~cyberduck_macos() override;

    // Each keeps its argument (the two records of machine and settings are not used).
    void macos_set_plugin_helper_obj(plugin_helper_functions *helper); // not owned
    void macos_set_record_count(qint64 count);
    void macos_set_tab_processed_count(int count);
    void macos_set_desktop_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_desktop_info info);
    void macos_set_general_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info info);
    // The users of earlier sources stay in the list: the host may examine several, one by one.
    void macos_set_source_info(struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info info);
    void macos_set_essentials();              // arms the cancel flag again
    void macos_set_plugin_name(QString name); // trimmed
    void macos_set_destination_location(QString result_dir, QString temp_dir, QString db_path);
    // Keeps the names that the transfers extractor does not read anyway.
    void macos_set_extended_attributes_list(QStringList attributes);
    void macos_set_essential_for_haldo_bench_extraction(QStringList tabs);
    void macos_set_engine_type(int type);
    void macos_cancel_extraction(); // may come from another thread
    void macos_set_source_count(int count);

    // The record count is emitted at most once in this time while rows are written; 1000 at first.
    void set_signal_interval_ms(qint64 interval) { signal_interval_ms = interval; }

    // Lists the users' folders and files; needs the source record.
    void macos_find_artifacts_source();
    // Runs the extractors of the selected tabs and emits the counts.
    void macos_extract_artifacts();

    // The extractors: each writes its rows into the result database in one transaction and adds
    // them to the record count. Failures are lines of the debug log.
    void xcode_extract_bookmarks();
    void xcode_extract_history();
    void xcode_extract_transfers();
    void xcode_extract_preferences(QString plist_path, QString user_name);
    // One preference row through a connection that the caller holds open.
    void insert_values_fun(QString label, QString value, QSqlDatabase &database, QString plist_path,
                           QString user_name);

    // Of one file, reachable here; an empty record when it is not there or nothing is known.
    struct_GLOBAL_ARTIFACT_cfstring_attributes extract_cfstring_attributes(QString file_path);
    // Latitude and longitude in degrees with 6 significant digits; null where unknown.
    QPair<QString, QString> extract_longi_lati_attributes(QString file_path);
    // Of each path the attributes named at the same index: first the values parted by ";++::++;",
    // then an XML document of names and values.
    QPair<QString, QString> get_extended_attributes(QStringList file_paths,
                                                    QList<QStringList> attribute_lists);

Q_SIGNALS:
    void signal_extracted_records_of_plugin_macos(qint64 records);
    void signal_total_tabs_processed_macos(int tabs);

private:
    void find_source_file();
    void filter_extended_attribute_list();
    void extract_plugin_artifacts();
    void extract_tab(const char *tab, void (cyberduck_macos::*extractor)());
    bool extract_all_preferences();
    void count_tab();
    // Adds one to the record count and emits it about once a second.
    void count_row();
    [[nodiscard]] macos::run_environment environment();
    // The helpers stop on a flag of their own, which is set first: what they were asked for
    // meanwhile is cut short.
    [[nodiscard]] bool is_cancelled() const
    {
        return cancel_extraction_flag || plugin_static_function::bool_cancel_extraction;
    }

    // One preference row; false, after the log lines of that, when it was not inserted.
    bool insert_preference(const QString &label, const QString &value, const QString &plist_path,
                           const QString &user_name, macos::insert_statement *statement);
    // Transfers: one list, one item of it, what is known of the item's local copy.
    macos::step read_transfer(const macos::loaded_list &list, macos::extractor_run *run);
    // `row` has the transfer's own fields; those of the item before are replaced.
    // False, without a row, when the list gives no more values.
    bool insert_item(const platform::property_list_value &item, const QString &user,
                     macos::transfer_row *row, macos::extractor_run *run);
    void describe_local_copy(const QString &local_path, const support::resolved_path &place,
                             macos::transfer_row *row);
    // What is known of the file or folder at a resolved path; remembered for a while, since a queue
    // may name the same large folder in every item.
    [[nodiscard]] macos::local_copy_facts facts_of(const QString &real_path);
    [[nodiscard]] QPair<QString, QString>
    attributes_of_files(const QList<macos::placed_file> &files,
                        const QList<QStringList> &attribute_lists) const;
    [[nodiscard]] support::resolved_path place_in_source(const QString &path) const;
    // The same for a path that is resolved already.
    [[nodiscard]] struct_GLOBAL_ARTIFACT_cfstring_attributes
    attributes_at(const QString &real_path) const;
    [[nodiscard]] QPair<QString, QString> position_at(const QString &real_path) const;
    void log_metadata_notes();

    qint64 record_count = 0;
    int tab_processed_count = 0;
    std::unique_ptr<QElapsedTimer> extraction_timer; // invalid until the first run
    plugin_helper_functions *plugin_helper_obj = nullptr;
    QString temp_dir_path;
    QString destination_db_path;
    QString result_dir_path;
    QStringList extended_attributes_list;
    QString source_type_internal;
    QString fs_extraction_source_path;
    int engine_type = -1;
    std::atomic<bool> cancel_extraction_flag{false};
    int source_count = -1;
    QString os_scheme_display;
    QStringList system_user_list;
    QStringList essential_tab_list;
    QString plugin_name;
    // What discovery found: at most one entry of each kind per user, existing paths.
    QStringList bookmarks_dir_list;
    QStringList history_dir_list;
    QStringList transfers_dir_list;
    QStringList preferences_file_list;

    qint64 signal_interval_ms = 1000;
    QPair<QString, QString> attributes_of_no_file_;         // made once a run, 3 µs less an item
    QCache<QString, macos::local_copy_facts> known_copies_; // by resolved path
};
