// Walks a folder and everything below it, one entry at a time.
#pragma once

#include "evidence/access/descriptor.h"
#include "evidence/folders/folder_listing.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace evidence {

// What a walk takes in at most. Far beyond any folder that a person or a program fills; a damaged
// or forged file system can have no end.
struct walk_limits
{
    qint64 entries = 10'000'000;  // of one folder
    size_t folders = 1'000'000;   // found and still to be walked
    qint64 path_bytes = 64 << 20; // of their paths together
};

// What a walk gives. `shown`: files, folders and links, but neither hidden entries (names with a
// leading ".") nor what lies below hidden folders. `everything`: these too, and special files.
enum class walk_extent { shown, everything };

// Links are given but never followed. A folder's own
// entries come before those of its subfolders, otherwise in the file system's order. A folder is
// opened from the one above it if that was listed last, so that deep folders cost no more than
// others. Opening does not change access times where the system allows. A folder whose path is
// longer than the system opens is left out.
class folder_walk
{
public:
    enum class entry_kind { file, folder, link, special };

    // `recorded`: the folder as it is to be shown; `real`: where it is reachable, free of links.
    folder_walk(const QString &recorded, const QString &real, const walk_limits &limits = {},
                walk_extent extent = walk_extent::shown);

    // Goes to the next entry; false at the end.
    bool next();
    // Folders that could not be listed, or not to their end, since the last call: full paths,
    // starting with the recorded folder.
    [[nodiscard]] QStringList take_failed();

    // Of the current entry. `name` is valid until the next step.
    [[nodiscard]] const QByteArray &name() const { return name_; }
    [[nodiscard]] entry_kind kind() const { return kind_; }
    // Whether it, or a folder below the walk's own that holds it, is hidden.
    [[nodiscard]] bool is_hidden() const;
    // The open folder that holds it, for the calls that take one; valid until the next step.
    [[nodiscard]] int folder_descriptor() const { return directory_.descriptor(); }
    // Full path, starting with the recorded folder.
    [[nodiscard]] QString path() const;
    // Full path, starting with the real folder.
    [[nodiscard]] QString real_path() const;
    [[nodiscard]] QByteArray encoded_real_path() const { return real_ + folder_ + name_; }
    // False when the path's bytes are no text in the system's encoding: what path() shows is then
    // not what the source has, and opens nothing.
    [[nodiscard]] bool path_is_text() const;

private:
    // The path of the open folder, starting with the recorded one.
    struct shown_folder
    {
        QString path;
        bool is_text; // its bytes are
    };

    bool open_next_folder();
    bool open_folder();
    void note_failed();
    // Decoded once for all entries, and only for those that are asked for.
    [[nodiscard]] const shown_folder &shown() const;
    void close_folder();
    bool take(const dirent &found);
    bool kind_of(const dirent &found, entry_kind *kind);

    QByteArray recorded_;                     // ends in "/"
    QByteArray real_;                         // ends in "/"
    std::vector<QByteArray> pending_folders_; // below the walk's folder, each ends in "/"
    qint64 pending_bytes_ = 0;
    folder_listing directory_;
    QByteArray folder_; // the open one, below the walk's folder; empty or ends in "/"
    bool has_subfolders_ = false;
    // The folder above those that were found last.
    QByteArray folder_above_; // below the walk's folder; empty or ends in "/"
    descriptor above_;
    mutable std::optional<shown_folder> shown_;
    QByteArray name_;
    QStringList failed_;
    entry_kind kind_ = entry_kind::file;
    walk_limits limits_;
    walk_extent extent_;
    qint64 entries_ = 0;   // of the open folder, so far
    bool is_whole_ = true; // what has been taken in of it
};

} // namespace evidence
