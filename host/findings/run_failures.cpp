#include "host/findings/run_failures.h"

#include "log/encryptor_string.h"
#include "results/database/result_tables.h"

#include <QFile>

namespace host {

namespace {

constexpr char enciphered_record_end[] = "<[{()}]>";
constexpr char message_start[] = "]:-- ";
constexpr qint64 block_bytes = 1 << 20;

// "outside the source" of a link in place of a list ends in the list's suffix or in "/". Anything
// else is the place of a local copy, which is none of the client's data.
bool is_of_local_copy(const QString &message)
{
    return message.contains(QLatin1String("outside the source ")) &&
           !message.endsWith(QLatin1String(".duck")) && !message.endsWith(QLatin1Char('/')) &&
           !message.endsWith(QLatin1String(".cyberducktransfer")) &&
           !message.endsWith(QLatin1String(".plist"));
}

void take_line(const QString &line, run_failures *failures)
{
    if (!line.contains(QLatin1String("FAILED")) || is_of_local_copy(line))
        return;
    ++failures->count;
    if (failures->first.size() >= max_told_failures)
        return;
    const int start = line.indexOf(QLatin1String(message_start));
    failures->first.append(line.mid(start < 0 ? 0 : start + int(sizeof message_start) - 1));
}

} // namespace

run_failures failures_in_log(const QString &path, qint64 offset, bool is_enciphered)
{
    run_failures failures;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(offset))
        return failures;
    encryptor_string cipher;
    const QByteArray end = is_enciphered ? enciphered_record_end : "\n";
    QByteArray rest;
    while (!file.atEnd()) {
        rest += file.read(block_bytes);
        int start = 0;
        for (int stop = rest.indexOf(end); stop >= 0; stop = rest.indexOf(end, start)) {
            const QByteArray record = rest.mid(start, stop - start);
            take_line(is_enciphered ? cipher.decryptToString(QString::fromLatin1(record))
                                    : QString::fromUtf8(record),
                      &failures);
            start = stop + end.size();
        }
        rest.remove(0, start);
    }
    return failures;
}

} // namespace host
