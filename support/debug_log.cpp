// The debug log: whether and where lines go is the host's decision.
#include "plugin_static_function.h"

#include "encryptor_string.h"
#include "visible_text.h"

#include <QDateTime>
#include <QDebug>

bool plugin_static_function::debug_mode_status_bool = false;
bool plugin_static_function::debug_print_in_file_bool = false;
bool plugin_static_function::debug_print_on_terminal_bool = false;
bool plugin_static_function::debug_encryption_status_bool = false;
QString plugin_static_function::debug_file_path_QString;
QFile plugin_static_function::debug_file_regular_QFile;

namespace {

// Cannot occur inside base64, so it parts the records of an enciphered log.
constexpr char record_separator[] = "<[{()}]>";

// UTF-16 units of a message. A list can name paths of any length, and millions of them.
constexpr int longest_message = 16 * 1024;

QString shown_message(const QString &message)
{
    const int left_out = message.size() - longest_message;
    if (left_out <= 0)
        return support::visible_text(message);
    return support::visible_text(message.left(longest_message)) +
           QStringLiteral(" [%1 more]").arg(left_out);
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

// The local time; written out once a second, which takes 6 µs.
QString time_text()
{
    thread_local QString text;
    thread_local qint64 second = -1;
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    if (now != second) {
        second = now;
        text = QDateTime::fromSecsSinceEpoch(now).toString(QStringLiteral("yyyy-MMM-ddThh-mm-ss"));
    }
    return text;
}

// Messages end in names and texts of the source: whatever these hold, a message is one line.
QString log_line(const QString &message, const QString &function_info, int engine_type)
{
    return QLatin1Char('[') + time_text() + engine_part(engine_type) +
           QLatin1String("][Artifacts Extraction][") + qualified_function_name(function_info) +
           QLatin1String("]:-- ") + shown_message(message);
}

} // namespace

void plugin_static_function::set_general_info(
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_general_info info)
{
    debug_file_path_QString = info.debug_file_path;
    debug_mode_status_bool = info.debug_mode_status;
    debug_print_in_file_bool = info.debug_print_in_file;
    debug_print_on_terminal_bool = info.debug_print_on_terminal;
    debug_encryption_status_bool = info.debug_encryption_status;
    open_debug_file();
}

void plugin_static_function::open_debug_file()
{
    if (!debug_mode_status_bool || !debug_print_in_file_bool)
        return;
    // A file still open from earlier settings would refuse the new name and keep the old one.
    close_debug_file();
    debug_file_regular_QFile.setFileName(debug_file_path_QString);
    debug_file_regular_QFile.open(QIODevice::Append);
}

void plugin_static_function::close_debug_file()
{
    if (!debug_file_regular_QFile.isOpen())
        return;
    debug_file_regular_QFile.flush();
    debug_file_regular_QFile.close();
}

void plugin_static_function::app_debug(QString message, QString function_info)
{
    if (!debug_mode_status_bool)
        return;
    const QString line = log_line(message, function_info, type_engine_int);
    if (debug_print_on_terminal_bool)
        qDebug() << line;
    if (!debug_print_in_file_bool || !debug_file_regular_QFile.isOpen())
        return;
    if (debug_encryption_status_bool) {
        const QString token = encrypt_string(line, function_info);
        debug_file_regular_QFile.write(token.toLocal8Bit());
        debug_file_regular_QFile.write(record_separator);
    } else {
        debug_file_regular_QFile.write(line.toLocal8Bit() + '\n');
    }
    debug_file_regular_QFile.flush();
}

QString plugin_static_function::encrypt_string(QString text, QString caller)
{
    Q_UNUSED(caller)
    if (text.isEmpty())
        return QString();
    encryptor_string cipher;
    return cipher.encryptToString(text);
}
