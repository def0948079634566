// What the extractors share: the database, the walk over the users' folders, cancelling, the
// boundary of the source, loading a list, inserting, counting and the log lines of all that. An
// extractor adds its words, its statement and what it reads from one list.
#pragma once

#include "path_mapper.h"
#include "platform/property_list.h"
#include "result_connection.h"
#include "support/folder_walk.h"
#include "support/source_boundary.h"

#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <optional>

namespace macos {

// UTF-16 units in all rows of one list. A queue repeats the texts of its host in the row of every
// item: few bytes could fill a disk. 160,000 transfers take less than half of it.
constexpr qint64 most_stored_units = qint64(1) << 29;

// How a step of a run ended.
enum class step { done, cancelled };

// What the adapter lends to a run.
struct run_environment
{
    QString database_path;
    QString source_root; // ends in "/"
    QString source_type;
    QString os_display;
    const std::atomic<bool> *cancelled = nullptr;
    std::function<void()> count_row;               // called after each inserted row
    std::function<void(qint64 rows)> uncount_rows; // of counted rows that were lost after all
};

// The words of an extractor's log lines; readers of the log know them as they are.
struct extractor_words
{
    const char *signature; // function text of every line, and name of the connection
    const char *starts;
    const char *database_failed;
    const char *failed_end;
    const char *path_failed;     // the path follows
    const char *list_failed;     // the path follows
    const char *outside_source;  // the path follows
    const char *text_cut;        // the path follows
    const char *values_left_out; // the path follows
    const char *folder_failed;   // the path follows
    const char *insert_failed;
    bool insert_failed_names_database; // the database's file name follows
    const char *insert_error;          // the error follows
    const char *insert_query;          // the statement follows
    const char *commit_failed;         // the error follows
    const char *ends;
};

struct extractor_profile
{
    extractor_words words;
    const char *suffix; // of the lists' file names, case-sensitive
    const char *statement;
};

// The values that every row has, whatever it tells.
struct row_origin
{
    QString bookmark = QStringLiteral("0"); // not tagged by the examiner
    QString system_user;
    QString source_file;
    QString artifacts_relation_source_file;
    QString source_count_name;
    QString os_scheme_display;
};

// A text of a list's dictionary and the field of the row that it goes to.
template <typename Row> struct key_field
{
    QString key;
    QString Row::*field;
};

// The trimmed text of a key; null when the key is missing or its value is no text. Keys are given
// as QStringLiteral: one made from a plain literal at each call costs 0.02 µs.
[[nodiscard]] QString trimmed_text(const platform::property_list_value &dictionary,
                                   const QString &key);
// The same, cut to whole seconds: the client writes milliseconds since 1970 as text.
[[nodiscard]] QString seconds_text(const platform::property_list_value &dictionary,
                                   const QString &key);
// The value of a key that is a dictionary, else absent.
[[nodiscard]] platform::property_list_value
dictionary_of(const platform::property_list_value &parent, const QString &key);

// The trimmed "Path" of a dictionary that describes a file or folder; null without one.
[[nodiscard]] QString recorded_path(const platform::property_list_value &parent,
                                    const QString &key);

template <typename Row, size_t Count>
void read_texts(const platform::property_list_value &dictionary,
                const key_field<Row> (&keys)[Count], Row *row)
{
    for (const key_field<Row> &entry : keys)
        row->*entry.field = trimmed_text(dictionary, entry.key);
}

// One list that was found and loaded; valid during the call that gets it.
struct loaded_list
{
    QString path; // as reachable here
    QString user;
    platform::property_list_value root; // a dictionary
};

// What all rows of one user share; the places of their lists are still to be set.
[[nodiscard]] row_origin origin_of(const QString &user, const run_environment &environment);
// Sets where a row's list is.
void set_place(const QString &path, const path_mapper &paths, row_origin *row);

class extractor_run
{
public:
    extractor_run(const extractor_profile &profile, const run_environment &environment);

    // Logs the start and opens the database; false after the failure lines.
    bool open();
    // Calls `read` for each list below `folders`, in their order. Logs the end unless cancelled.
    void read_lists(const QStringList &folders,
                    const std::function<step(const loaded_list &)> &read);

    [[nodiscard]] bool is_cancelled() const { return *environment_.cancelled; }
    [[nodiscard]] const path_mapper &paths() const { return paths_; }
    [[nodiscard]] const support::source_boundary &boundary() const { return boundary_; }
    void set_origin(const loaded_list &list, row_origin *row) const
    {
        *row = origin_;
        set_place(list.path, paths_, row);
    }

    // Whether the rows of the current list take as much as those of one may.
    [[nodiscard]] bool list_is_full() const { return stored_units_ > most_stored_units; }
    // Inserts the row; counts it, or logs the failure.
    template <typename Row, size_t Count>
    void insert(const column_field<Row> (&columns)[Count], const Row &row)
    {
        for (const column_field<Row> &column : columns)
            stored_units_ += (row.*column.field).size();
        if (statement_->insert_row(columns, row))
            count_row();
        else
            insert_failed();
    }

    // One line of this extractor: the words, then the value.
    void log(const char *words, const QString &value = QString()) const;

private:
    step read_folder(const QString &folder, const std::function<step(const loaded_list &)> &read);
    step read_entry(const support::folder_walk &walk, const QString &user,
                    const std::function<step(const loaded_list &)> &read);
    enum class found { list, no_list, nothing };
    // Loads the entry's list; `nothing`, after a log line where one is due, when it is not to be
    // opened.
    found load_entry(const support::folder_walk &walk);
    void count_row()
    {
        ++uncommitted_rows_;
        environment_.count_row();
    }
    void insert_failed();
    // The line of a transaction that was lost; takes its rows from the count.
    void rows_lost(const QString &error);
    // Commits. The rows so far are kept after a cancellation, too.
    void close();

    const extractor_profile &profile_;
    run_environment environment_;
    path_mapper paths_;
    support::source_boundary boundary_;
    result_connection connection_;
    std::optional<insert_statement> statement_; // dies before the connection
    platform::property_list list_;
    qint64 uncommitted_rows_ = 0;
    qint64 stored_units_ = 0; // of the current list
    row_origin origin_; // of the folder that is being read; made once for it, 0.1 µs less a list
};

} // namespace macos
