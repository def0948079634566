// Sources of any size, written below a folder, and the result database that goes with them: what
// the benchmarks measure over.
#pragma once

#include "plugin/host_records.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

// Names of what a source is filled with; also the tabs and tables of the plug-in.
extern const char bookmarks_table[];
extern const char history_table[];
extern const char transfers_table[];

// One saved connection of about 1.3 KB, as the client writes them.
[[nodiscard]] QByteArray connection_list(int number);

class generated_source
{
public:
    generated_source();

    // `count` lists of a kind; the tables of the result database are made empty.
    void write_connections(const char *table, int count);
    // `count` queued transfers of `items` each. The local copies, when there are any, hold 300
    // bytes each, one folder for each transfer.
    void write_transfers(int count, int items, bool with_local_copies);
    // A settings file with every preference that the plug-in knows and `others` that it does not.
    void write_preferences(int others);

    [[nodiscard]] QString root() const { return folder_.filePath(QStringLiteral("source/")); }
    // Where the lists of a kind lie, with trailing "/".
    [[nodiscard]] QString lists_of(const char *table) const;
    [[nodiscard]] QString preferences() const;
    [[nodiscard]] QString result_folder() const
    {
        return folder_.filePath(QStringLiteral("result"));
    }
    [[nodiscard]] QString database() const;
    [[nodiscard]] struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info info() const;
    // Makes the result database anew, with empty tables.
    void make_database() const;

private:
    QTemporaryDir folder_;
};
