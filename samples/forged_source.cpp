#include "samples/forged_source.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

const char older_bookmarks[] = "/Library/Application Support/Cyberduck/Bookmarks/";
const char older_history[] = "/Library/Application Support/Cyberduck/History/";
const char older_transfers[] = "/Library/Application Support/Cyberduck/Transfers/";
const char container_bookmarks[] =
    "/Library/Group Containers/G69SCX94XU.duck/Library/Application Support/duck/Bookmarks/";
const char preferences_path[] = "/Library/Preferences/ch.sudo.cyberduck.plist";

namespace {

void require(bool is_made, const QString &path)
{
    if (!is_made)
        qFatal("cannot make %s", qUtf8Printable(path));
}

} // namespace

QByteArray xml_dictionary(const QByteArray &content)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>" + content +
           "</dict>\n</plist>\n";
}

QByteArray text_entry(const char *key, const char *value)
{
    return QByteArray("<key>") + key + "</key><string>" + value + "</string>";
}

forged_source::forged_source()
    : root_(folder_.filePath(QStringLiteral("source/")))
{
    make_folder(QStringLiteral("Users"));
}

QString forged_source::write(const QString &path, const QByteArray &content) const
{
    QFile file(root_ + path);
    require(QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly) &&
                file.write(content) == content.size(),
            file.fileName());
    return file.fileName();
}

void forged_source::write_sparse(const QString &path, const QByteArray &content,
                                 qint64 size_bytes) const
{
    require(QFile::resize(write(path, content), size_bytes), path);
}

QString forged_source::make_folder(const QString &path) const
{
    require(QDir().mkpath(root_ + path), path);
    return root_ + path;
}

void forged_source::link(const QString &path, const QString &target) const
{
    require(QDir().mkpath(QFileInfo(root_ + path).path()) &&
                ::symlink(QFile::encodeName(target), QFile::encodeName(root_ + path)) == 0,
            path);
}

void forged_source::hard_link(const QString &path, const QString &existing) const
{
    require(::link(QFile::encodeName(root_ + existing), QFile::encodeName(root_ + path)) == 0,
            path);
}

void forged_source::fifo(const QString &path) const
{
    require(::mkfifo(QFile::encodeName(root_ + path), 0600) == 0, path);
}
