// Turns the debug log on for the life of a test and reads it back.
#pragma once

#include "support/plugin_static_function.h"

#include <QFile>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

class log_capture
{
public:
    log_capture()
    {
        plugin_static_function::set_essentials();
        plugin_static_function::set_engine_type(0);
        struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info info;
        info.debug_mode_status = true;
        info.debug_print_in_file = true;
        info.debug_file_path = path();
        plugin_static_function::set_general_info(info);
    }
    ~log_capture()
    {
        plugin_static_function::close_debug_file();
        plugin_static_function::set_essentials();
    }
    log_capture(const log_capture &) = delete;
    log_capture &operator=(const log_capture &) = delete;

    [[nodiscard]] QString path() const { return folder_.filePath(QStringLiteral("debug.log")); }

    // What was logged since the last call, without time, engine and function.
    QStringList take_messages()
    {
        QFile file(path());
        QStringList messages;
        if (!file.open(QIODevice::ReadOnly) || !file.seek(read_))
            return messages;
        const QString marker = QStringLiteral("]:-- ");
        while (!file.atEnd()) {
            const QString line = QString::fromUtf8(file.readLine());
            messages.append(line.mid(line.indexOf(marker) + marker.size()).chopped(1));
        }
        read_ = file.pos();
        return messages;
    }

private:
    QTemporaryDir folder_;
    qint64 read_ = 0;
};
