// Tells by its extension whether a file name is that of an image, a sound or a video, and makes
// working copies of source files in a folder that the host chooses.
//
// One object is shared by the host and its plug-ins. The extensions are read-only after
// construction, and the cancel flag may be set from another thread at any time; the rest is for the
// thread on which the host calls the plug-in. Nothing throws, nothing is logged.
#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>

#include <array>
#include <atomic>

class plugin_helper_functions : public QWidget
{
    Q_OBJECT

public:
    explicit plugin_helper_functions(QWidget *parent);

    // What follows the last "." of the trimmed name counts, in any case. False while cancelled.
    bool check_is_image_by_extn(QString file_name);
    bool check_is_audio_by_extn(QString file_name);
    // Also true for a sound whose extension begins with a letter: the host lists both together.
    bool check_is_video_by_extn(QString file_name);

    // Copies `source_path` into the ad-hoc folder under a name that is free there and returns the
    // copy's path, whether copying succeeded or not: a missing file tells of the failure. What
    // could not be copied whole is removed. Only a regular file is copied, never through a link,
    // which could lead out of the source. A database brings its "-shm" and "-wal" files along, and
    // finds no others beside it.
    //
    // Empty for a blank source path or while no folder is set. When the run was cancelled there is
    // no free name: nothing is copied or deleted, and the path is the folder itself, which cannot
    // be mistaken for a copy.
    QString get_adhoc_path_for_database(QString source_path);
    QString get_adhoc_path_for_regular_file(QString source_path);

    // The folder of the copies with its trailing "/"; made when it is first needed.
    void set_adhoc_parent_path(QString path);
    // Before a run: takes a cancellation back.
    void set_essentials();
    void set_cancel_extraction(bool cancel);

private:
    // One list per first character after the dot: "0" to "9", then "a" to "z".
    using extension_buckets = std::array<QStringList, 36>;

    void initialize_image_extension_list();
    void initialize_audio_extension_list();
    void initialize_video_extension_list();
    [[nodiscard]] bool is_listed(const QString &suffix, const extension_buckets &buckets) const;

    std::atomic<bool> cancel_extraction_flag_{false};
    extension_buckets image_extensions_;
    extension_buckets video_extensions_;
    extension_buckets audio_extensions_;
    QString adhoc_parent_path_;
};
