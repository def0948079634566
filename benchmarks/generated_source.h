// Writes sources of any size below a folder, and makes a result database for them. The benchmarks
// measure over these.
#pragma once

#include "host_interface/host_records.h"

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

    // Writes `count` lists of a kind, and empties the tables of the result database.
    void write_connections(const char *table, int count);
    // Writes `count` queued transfers of `items` each. Local copies, if any, have 300 bytes each,
    // in one folder per transfer.
    void write_transfers(int count, int items, bool with_local_copies);
    // Writes a settings file with every known preference and `others` unknown ones.
    void write_preferences(int others);

    [[nodiscard]] QString root() const { return folder_.filePath(QStringLiteral("source/")); }
    // The folder of the lists of a kind, with trailing "/".
    [[nodiscard]] QString lists_of(const char *table) const;
    // Of an item of a list that write_transfers() made.
    [[nodiscard]] QByteArray local_copy_of(const QByteArray &list_path, int item) const;
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
