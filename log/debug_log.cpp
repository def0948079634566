#include "log/debug_log.h"

#include "log/encryptor_string.h"
#include "log/visible_text.h"

#include <QDateTime>
#include <QDebug>

namespace logging {

namespace {

// Cannot occur inside base64, so it parts the records of an enciphered log.
constexpr char record_separator[] = "<[{()}]>";

// UTF-16 units of a message. A list can name paths of any length, and millions of them.
constexpr int max_message = 16 * 1024;

QString shown_message(const QString &message)
{
    const int left_out = message.size() - max_message;
    if (left_out <= 0)
        return visible_text(message);
    return visible_text(message.left(max_message)) + QStringLiteral(" [%1 more]").arg(left_out);
}

QString qualified_function_name(const QString &function_info)
{
    QString name = function_info.trimmed();
    if (name.isEmpty())
        return QStringLiteral("FUNCTION INFO IS EMPTY ---FAILED--- debug!!!");
    // Without "(" the position is -1, which counts from the end: the last character goes. Readers
    // of the log know such names.
    name.remove(name.indexOf(QLatin1Char('(')), name.size());
    name = name.trimmed();
    name.remove(0, name.lastIndexOf(QLatin1Char(' ')));
    return name.trimmed();
}

QString engine_part(int engine_type)
{
    switch (engine_type) {
    case 0:
        return QStringLiteral("][HALDO_BENCH");
    case 1:
        return QStringLiteral("][HALDO_SWEEP");
    case 2:
        return QStringLiteral("][HALDO_FIELD");
    default:
        return QStringLiteral("][ -----FAILED----- to find Engine Type ][") +
               QString::number(engine_type);
    }
}

// The local time. Its text is kept until the next second, since making it costs more than the line.
// Kept without a destructor, which would keep the library loaded as long as the thread lives.
QString time_text()
{
    constexpr int max_bytes = 64;
    thread_local char text[max_bytes] = {};
    thread_local qint64 second = -1;
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    if (now != second) {
        second = now;
        const QString made =
            QDateTime::fromSecsSinceEpoch(now).toString(QStringLiteral("yyyy-MMM-ddThh-mm-ss"));
        qstrncpy(text, made.toUtf8().constData(), max_bytes);
    }
    return QString::fromUtf8(text);
}

// Messages end in names and texts of the source: whatever these hold, a message is one line.
QString log_line(const QString &message, const QString &function_info, int engine_type)
{
    return QLatin1Char('[') + time_text() + engine_part(engine_type) +
           QLatin1String("][Artifacts Extraction][") + qualified_function_name(function_info) +
           QLatin1String("]:-- ") + shown_message(message);
}

} // namespace

void open_log_file(const QString &path, QFile *file)
{
    // A file still open from earlier settings would refuse the new name and keep the old one.
    close_log_file(file);
    file->setFileName(path);
    file->open(QIODevice::Append);
}

void close_log_file(QFile *file)
{
    if (!file->isOpen())
        return;
    file->flush();
    file->close();
}

void write_line(const log_settings &settings, const QString &message, const QString &function_info,
                QFile *file)
{
    if (!settings.is_on)
        return;
    const QString line = log_line(message, function_info, settings.engine_type);
    if (settings.to_terminal)
        qDebug() << line;
    if (!settings.to_file || !file->isOpen())
        return;
    if (settings.is_enciphered) {
        file->write(enciphered(line).toLocal8Bit());
        file->write(record_separator);
    } else {
        file->write(line.toLocal8Bit() + '\n');
    }
    file->flush();
}

QString enciphered(const QString &text)
{
    if (text.isEmpty())
        return QString();
    encryptor_string cipher;
    return cipher.encryptToString(text);
}

} // namespace logging
