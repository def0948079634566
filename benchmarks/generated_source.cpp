#include "generated_source.h"

#include "extraction/preferences_table.h"
#include "host_interface/frame/cyberduck.h"
#include "samples/attribute_values.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/xattr.h>

const char bookmarks_table[] = "bookmarks";
const char history_table[] = "history";
const char transfers_table[] = "transfers";

namespace {

constexpr int local_copy_bytes = 300;

QByteArray text_entry(const char *key, const QByteArray &value)
{
    return QByteArray("\t<key>") + key + "</key>\n\t<string>" + value + "</string>\n";
}

QByteArray dictionary_entry(const char *key, const QByteArray &content)
{
    return QByteArray("\t<key>") + key + "</key>\n\t<dict>\n" + content + "\t</dict>\n";
}

QByteArray list_of(const QByteArray &content)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist>\n<dict>\n" + content +
           "</dict>\n</plist>\n";
}

QByteArray connection_entries(int number)
{
    const QByteArray digits = QByteArray::number(number);
    return text_entry("Protocol", "sftp") + text_entry("Provider", "iterate GmbH") +
           text_entry("Nickname", "Server number " + digits) +
           text_entry("UUID", "1d3c2b6a-7d1e-4f2f-9c0a-" + digits.rightJustified(12, '0')) +
           text_entry("Hostname", "host" + digits + ".example.org") + text_entry("Port", "22") +
           text_entry("Username", "alice") + text_entry("Path", "/home/alice/project " + digits) +
           text_entry("Access Timestamp", "1589021112345") +
           text_entry("Comment", QByteArray(400, 'c')) +
           dictionary_entry("Download Folder Dictionary", text_entry("Path", "~/Downloads")) +
           dictionary_entry("Upload Folder Dictionary", text_entry("Path", "~/Desktop"));
}

QByteArray item_entries(const QByteArray &folder, const QByteArray &name)
{
    const QByteArray attributes = text_entry("Size", QByteArray::number(local_copy_bytes)) +
                                  text_entry("Modified", "1589021112345") +
                                  dictionary_entry("Permission", text_entry("Mask", "rw-r--r--"));
    const QByteArray remote = text_entry("Type", "[file]") +
                              text_entry("Remote", "/srv/" + folder + '/' + name) +
                              dictionary_entry("Attributes", attributes);
    const QByteArray local = text_entry("Path", "~/Downloads/" + folder + '/' + name);
    return "\t<dict>\n" + dictionary_entry("Remote", remote) +
           dictionary_entry("Local Dictionary", local) + "\t</dict>\n";
}

void write_file(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

QByteArray file_name(int number)
{
    return "file " + QByteArray::number(number) + ".txt";
}

} // namespace

QByteArray connection_list(int number)
{
    return list_of(connection_entries(number));
}

generated_source::generated_source()
{
    QDir().mkpath(root());
    make_database();
}

QString generated_source::lists_of(const char *table, const QString &user) const
{
    QString name = QLatin1String(table);
    name[0] = name.at(0).toUpper();
    return root() +
           QStringLiteral("Users/%1/Library/Application Support/Cyberduck/%2/").arg(user, name);
}

QString generated_source::preferences() const
{
    return root() + QStringLiteral("Users/alice/Library/Preferences/ch.sudo.cyberduck.plist");
}

QString generated_source::database() const
{
    return result_folder() + QStringLiteral("/Artifacts_Result/Cyberduck/Cyberduck.sqlite");
}

struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info generated_source::info() const
{
    struct_GLOBAL_COMMON_HALDO_AND_ARTIFACT_source_info source;
    source.fs_extraction_source_path = root();
    source.source_type_internal = QStringLiteral("macOS_Image");
    source.os_scheme_internal = QStringLiteral("macOS");
    source.os_scheme_display = QStringLiteral("macOS");
    source.system_account_QList = {{QStringLiteral("alice"), QString()}};
    return source;
}

void generated_source::make_database() const
{
    QDir(result_folder()).removeRecursively();
    cyberduck frame;
    frame.pub_set_engine_type(0);
    frame.pub_set_source_info(info());
    frame.pub_set_result_directory(result_folder());
    frame.pub_create_db_tables();
}

void generated_source::write_connections(const char *table, int count, const QString &user)
{
    const QString folder = lists_of(table, user);
    QDir().mkpath(folder);
    for (int i = 0; i < count; ++i)
        write_file(folder + QString::number(i) + QStringLiteral(".duck"), connection_list(i));
}

void generated_source::write_copy(int number)
{
    const QString path = QFile::decodeName(copy_path(number));
    if (number % transfers_.copies_in_folder == 0)
        QDir().mkpath(QFileInfo(path).path());
    write_file(path, QByteArray(local_copy_bytes, 'x'));
    if (!transfers_.says_where_from)
        return;
    const QByteArray where = list_of_texts({QStringLiteral("https://example.org/%1").arg(number)});
    if (::setxattr(QFile::encodeName(path).constData(), "user.com.apple.metadata:kMDItemWhereFroms",
                   where.constData(), size_t(where.size()), 0) != 0)
        qFatal("cannot write an attribute of %s", qPrintable(path));
}

void generated_source::write_transfers(const transfer_shape &shape)
{
    transfers_ = shape;
    const QString folder = lists_of(transfers_table);
    QDir().mkpath(folder);
    for (int i = 0; i < shape.lists; ++i) {
        QByteArray entries;
        for (int item = 0; item < shape.items; ++item) {
            const int number = i * shape.items + item;
            entries += item_entries(copies_folder(number), file_name(number));
            if (shape.has_copies)
                write_copy(number);
        }
        const QByteArray content =
            text_entry("Type", "download") +
            text_entry("UUID",
                       "7d1e4f2f-9c0a-1d3c-2b6a-" + QByteArray::number(i).rightJustified(12, '0')) +
            text_entry("Size", "6000") + text_entry("Timestamp", "1589021112345") +
            dictionary_entry("Host", connection_entries(i)) + "\t<key>Items</key>\n\t<array>\n" +
            entries + "\t</array>\n";
        write_file(folder + QString::number(i) + QStringLiteral(".cyberducktransfer"),
                   list_of(content));
    }
}

QByteArray generated_source::copies_folder(int number) const
{
    return "transfer " + QByteArray::number(number / transfers_.copies_in_folder);
}

QByteArray generated_source::copy_path(int number) const
{
    return QFile::encodeName(root()) + "Users/alice/Downloads/" + copies_folder(number) + '/' +
           file_name(number);
}

QByteArray generated_source::local_copy_of(const QByteArray &list_path, int item) const
{
    const int number_start = list_path.lastIndexOf('/') + 1;
    const QByteArray list =
        list_path.mid(number_start, list_path.indexOf('.', number_start) - number_start);
    return copy_path(list.toInt() * transfers_.items + item);
}

void generated_source::write_nested_folders(int folders, int depth)
{
    for (int first = 0; first < folders; first += depth) {
        const QString chain = lists_of(bookmarks_table) + QString::number(first);
        if (!QDir().mkpath(chain + QStringLiteral("/d").repeated(depth - 1)))
            qFatal("cannot make %d folders in one another", depth);
    }
}

void generated_source::write_index(const QHash<QString, QByteArray> &files)
{
    const QString store =
        root() + QStringLiteral(".Spotlight-V100/Store-V2/9C6A1D3C-2B6A-4F2F-9C0A-7D1E4F2F9C0A/");
    QDir().mkpath(store);
    for (auto file = files.begin(); file != files.end(); ++file)
        write_file(store + file.key(), file.value());
}

void generated_source::write_preferences(int others)
{
    QByteArray entries;
    for (const extraction::preference &entry : extraction::known_preferences())
        entries += text_entry(entry.key, "true");
    for (int i = 0; i < others; ++i)
        entries += text_entry("some.other.preference." + QByteArray::number(i), "value");
    QDir().mkpath(root() + QStringLiteral("Users/alice/Library/Preferences"));
    write_file(preferences(), list_of(entries));
}
