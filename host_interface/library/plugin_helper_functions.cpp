#include "host_interface/library/plugin_helper_functions.h"

#include "evidence/copies/working_copy.h"
#include "host_interface/library/plugin_static_function.h"

plugin_helper_functions::plugin_helper_functions(QWidget *parent)
    : QWidget(parent)
{
}

bool plugin_helper_functions::check_is_image_by_extn(QString file_name)
{
    return kinds_.is_image(file_name, run::cancellation(cancel_extraction_flag_));
}

bool plugin_helper_functions::check_is_audio_by_extn(QString file_name)
{
    return kinds_.is_audio(file_name, run::cancellation(cancel_extraction_flag_));
}

bool plugin_helper_functions::check_is_video_by_extn(QString file_name)
{
    return kinds_.is_video(file_name, run::cancellation(cancel_extraction_flag_));
}

QString plugin_helper_functions::get_adhoc_path_for_database(QString source_path)
{
    return evidence::make_working_copy(source_path, adhoc_parent_path_,
                                       evidence::copied_file::database,
                                       plugin_static_function::run_cancellation());
}

QString plugin_helper_functions::get_adhoc_path_for_regular_file(QString source_path)
{
    return evidence::make_working_copy(source_path, adhoc_parent_path_,
                                       evidence::copied_file::regular,
                                       plugin_static_function::run_cancellation());
}

void plugin_helper_functions::set_adhoc_parent_path(QString path)
{
    adhoc_parent_path_ = path;
}

void plugin_helper_functions::set_essentials()
{
    cancel_extraction_flag_ = false;
}

void plugin_helper_functions::set_cancel_extraction(bool cancel)
{
    cancel_extraction_flag_ = cancel;
}
