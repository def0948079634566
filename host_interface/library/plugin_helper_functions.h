// The other library that the host's plug-ins share: media kinds by file name, and working copies of
// source files. Forwards, and keeps the folder and the cancel flag that the host sets.
//
// The host and its plug-ins share one object. The cancel flag may be set from another thread at any
// time. Use the rest on the thread on which the host calls the plug-in. Nothing throws, nothing is
// logged.
#pragma once

#include "text/media/media_kind.h"

#include <QString>
#include <QWidget>

#include <atomic>

class plugin_helper_functions : public QWidget
{
    Q_OBJECT

public:
    explicit plugin_helper_functions(QWidget *parent);

    // See text::media_kind.
    bool check_is_image_by_extn(QString file_name);
    bool check_is_audio_by_extn(QString file_name);
    bool check_is_video_by_extn(QString file_name);

    // See evidence::make_working_copy.
    QString get_adhoc_path_for_database(QString source_path);
    QString get_adhoc_path_for_regular_file(QString source_path);

    // The folder of the copies, with a trailing "/". It is made on first use.
    void set_adhoc_parent_path(QString path);
    // Call it before a run: resets the cancel flag.
    void set_essentials();
    void set_cancel_extraction(bool cancel);

private:
    std::atomic<bool> cancel_extraction_flag_{false};
    text::media_kind kinds_;
    QString adhoc_parent_path_;
};
