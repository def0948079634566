// The local copies of transferred files: what the source's file system and its metadata say about
// each.
#pragma once

#include "evidence/folders/source_boundary.h"
#include "extraction/copies/copy_attributes.h"
#include "extraction/source/extraction_context.h"
#include "extraction/source/path_mapper.h"
#include "extraction/copies/selected_attributes.h"
#include "extraction/copies/used_dates.h"
#include "platform/spotlight_item.h"

#include <QCache>
#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

namespace extraction {

// The values of a local copy in a row. All texts; null when unknown.
struct copy_fields : copy_attributes
{
    QString attr_file_type; // not filled: the column of that name stays empty
    QString file_name;      // last component of the local path
    QString file_size;      // bytes, a folder's content included
    QString file_exist;     // "YES" or "NO"
    QString suffix;
    QString date_of_adding; // Spotlight's, else the birth of the copy; seconds since 1970 UTC
    QString last_used_date;
    QString used_dates; // parted by ";"
    QString first_date;
    QString last_date;
    QString extended_attributes_key_value;
    QString extended_attributes_value_for_search;
};

// Use one object per run, because files may change between two runs. It remembers the copies asked
// for last, because a queue may name the same large folder in every item.
class local_copies
{
public:
    // The context outlives it.
    explicit local_copies(const extraction_context &context);
    ~local_copies();

    // `local_path`: as recorded, below the source's root; `place`: where it leads, held.
    void describe(const QString &local_path, const evidence::resolved_path &place,
                  copy_fields *fields);
    // These serve a host that asks for single files by paths reachable here. The texts are null for
    // a file that is missing or outside the source.
    [[nodiscard]] copy_attributes attributes_of_file(const QString &path);
    [[nodiscard]] position_texts position_of_file(const QString &path);
    // Of each path the attributes named at the same index.
    [[nodiscard]] selected_texts selected_of_files(const QStringList &paths,
                                                   const QList<QStringList> &names);
    // Logs the notes that the sources of metadata left since the last call.
    void log_notes();

private:
    struct facts;

    // What is known of a file, from its metadata, its content and the file system.
    void take_facts(const evidence::resolved_path &place, copy_fields *fields);
    [[nodiscard]] copy_attributes attributes_at(const evidence::resolved_path &place);
    [[nodiscard]] selected_texts selected_of(const QString &local_path,
                                             const evidence::resolved_path &place);
    [[nodiscard]] selected_texts selected_of(const QList<selected_file> &files);
    // Made on first use: a run without copies needs none.
    [[nodiscard]] platform::spotlight_catalog &catalog();

    const extraction_context &context_;
    path_mapper paths_;
    evidence::source_boundary boundary_;
    std::unique_ptr<platform::spotlight_catalog> catalog_;
    selected_texts of_no_file_;
    unselected_document of_unselected_;
    QCache<QString, facts> known_; // by resolved path
};

} // namespace extraction
