#include "traced_run.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace {

constexpr char traced_calls[] = "trace=%file,ftruncate,fallocate,fchmod,fchown,fsetxattr,"
                                "fremovexattr,fgetxattr,flistxattr,bind";

// Whatever else strace calls a file operation only looks something up.
const QRegularExpression &opening_call()
{
    static const QRegularExpression names(QStringLiteral("^(open|openat|openat2|creat)$"));
    return names;
}

const QRegularExpression &reading_call()
{
    static const QRegularExpression names(
        QStringLiteral("^([lf]?getxattr|[lf]?listxattr|execve|chdir|inotify_add_watch)$"));
    return names;
}

const QRegularExpression &looking_call()
{
    static const QRegularExpression names(
        QStringLiteral("^(access|faccessat2?|stat|lstat|newfstatat|fstatat64|statx|statfs|"
                       "readlink|readlinkat|getcwd)$"));
    return names;
}

const QRegularExpression &writing_flag()
{
    static const QRegularExpression flags(
        QStringLiteral("O_(WRONLY|RDWR|CREAT|TRUNC|APPEND|TMPFILE)"));
    return flags;
}

// strace writes bytes that are no plain characters as \123, \n, \" and the like.
QString unescaped(const QString &text)
{
    QByteArray bytes;
    const QByteArray raw = text.toLatin1();
    for (int i = 0; i < raw.size(); ++i) {
        if (raw.at(i) != '\\' || i + 1 == raw.size()) {
            bytes += raw.at(i);
            continue;
        }
        const char next = raw.at(++i);
        const int plain = QByteArray("nrtfv").indexOf(next);
        if (plain >= 0) {
            bytes += "\n\r\t\f\v"[plain];
        } else if (next >= '0' && next <= '7') {
            int length = 1;
            while (length < 3 && i + length < raw.size() && raw.at(i + length) >= '0' &&
                   raw.at(i + length) <= '7')
                ++length;
            bytes += static_cast<char>(raw.mid(i, length).toInt(nullptr, 8));
            i += length - 1;
        } else {
            bytes += next;
        }
    }
    return QString::fromUtf8(bytes);
}

// Every path that the arguments name: texts, from the folder before them if they are relative, and
// else the files behind descriptors.
QStringList named_paths(const QString &arguments)
{
    static const QRegularExpression text(
        QStringLiteral("(?:(?:AT_FDCWD|\\d+)<([^>]*)>, )?\"((?:[^\"\\\\]|\\\\.)*)\""));
    static const QRegularExpression descriptor(QStringLiteral("^\\d+<([^>]*)>"));
    QStringList paths;
    auto match = text.globalMatch(arguments);
    while (match.hasNext()) {
        const auto found = match.next();
        const QString path = unescaped(found.captured(2));
        paths.append(QDir::cleanPath(QDir(unescaped(found.captured(1))).absoluteFilePath(path)));
    }
    const auto behind = descriptor.match(arguments);
    if (paths.isEmpty() && behind.hasMatch())
        paths.append(QDir::cleanPath(unescaped(behind.captured(1))));
    return paths;
}

void take_call(const QString &name, const QString &arguments, const QString &result,
               traced_run *run)
{
    static const QRegularExpression opened(QStringLiteral("^\\d+<(.*)>$"));
    QStringList paths = named_paths(arguments);
    // With open, where the system says that it led; a setxattr's second text is no path.
    const auto target = opened.match(result);
    const bool opens = opening_call().match(name).hasMatch();
    if (opens && target.hasMatch())
        paths = QStringList(unescaped(target.captured(1)));
    if (name.contains(QLatin1String("xattr")))
        paths = paths.mid(0, 1);
    if (opens && !writing_flag().match(arguments).hasMatch() && name != QLatin1String("creat"))
        run->read += paths;
    else if (reading_call().match(name).hasMatch())
        run->read += paths.mid(0, 1); // the rest of an execve are arguments
    else if (!looking_call().match(name).hasMatch())
        run->written += paths;
}

void take_trace(const QString &file_name, traced_run *run)
{
    static const QRegularExpression call(
        QStringLiteral("^\\d+ +(\\w+)\\((.*?)(?:\\) += (.*?)| <unfinished \\.\\.\\.>)$"));
    QFile file(file_name);
    if (!file.open(QIODevice::ReadOnly))
        return;
    while (!file.atEnd()) {
        const auto match = call.match(QString::fromLatin1(file.readLine()).chopped(1));
        if (match.hasMatch())
            take_call(match.captured(1), match.captured(2), match.captured(3), run);
    }
}

} // namespace

traced_run trace(const QString &program, const QStringList &arguments)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("trace"));
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // The leak check of the address sanitizer is a tracer of its own.
    environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral("strace"),
                  QStringList{QStringLiteral("-f"), QStringLiteral("-qq"), QStringLiteral("-y"),
                              QStringLiteral("-s"), QStringLiteral("65536"), QStringLiteral("-e"),
                              QLatin1String(traced_calls), QStringLiteral("-e"),
                              QStringLiteral("signal=none"), QStringLiteral("-o"), file, program} +
                      arguments);
    traced_run run;
    const bool finished = process.waitForFinished(240'000);
    run.output = QString::fromUtf8(process.readAll()) + process.errorString();
    if (finished && process.exitStatus() == QProcess::NormalExit)
        run.status = process.exitCode();
    take_trace(file, &run);
    return run;
}

QStringList outside_of(const QStringList &paths, const QStringList &allowed)
{
    QStringList outside;
    for (const QString &path : paths) {
        bool is_allowed = false;
        for (const QString &place : allowed)
            is_allowed = is_allowed || path == place || path.startsWith(place + QLatin1Char('/'));
        if (!is_allowed)
            outside.append(path);
    }
    outside.removeDuplicates();
    return outside;
}
