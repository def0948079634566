// Writes sources of any size below a folder, and makes a result database for them. The benchmarks
// measure over these.
#pragma once

#include "host_interface/host_records.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QTemporaryDir>

// Names of what a source is filled with; also the tabs and tables of the plug-in.
extern const char bookmarks_table[];
extern const char history_table[];
extern const char transfers_table[];

// One saved connection of about 1.3 KB, as the client writes them.
[[nodiscard]] QByteArray connection_list(int number);

// Queued transfers. Local copies have 300 bytes each.
struct transfer_shape
{
    int lists = 1;
    int items = 1; // of each list
    bool has_copies = false;
    int copies_in_folder = 1;
    bool says_where_from = false; // the copies do, in an extended attribute
};

class generated_source
{
public:
    generated_source();

    // Writes `count` lists of a kind.
    void write_connections(const char *table, int count,
                           const QString &user = QStringLiteral("alice"));
    void write_transfers(const transfer_shape &shape);
    // Puts `folders` empty folders below the bookmarks, nested `depth` deep.
    void write_nested_folders(int folders, int depth);
    // Gives the volume an index. By their paths inside the index.
    void write_index(const QHash<QString, QByteArray> &files);
    // Writes a settings file with every known preference and `others` unknown ones.
    void write_preferences(int others);

    [[nodiscard]] QString root() const { return folder_.filePath(QStringLiteral("source/")); }
    // The folder of a user's lists of a kind, with trailing "/".
    [[nodiscard]] QString lists_of(const char *table,
                                   const QString &user = QStringLiteral("alice")) const;
    // Of an item of a list that write_transfers() wrote.
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
    void write_copy(int number);
    // Of the items in the order of the queue.
    [[nodiscard]] QByteArray copies_folder(int number) const;
    [[nodiscard]] QByteArray copy_path(int number) const;

    QTemporaryDir folder_;
    transfer_shape transfers_;
};
